// SPDX-License-Identifier: Apache-2.0
#pragma once

// The functions of a module by family, each in its own source. A family is set up once, with what it keeps of its own,
// and lives as long as the core whose functions it serves.

namespace zorv::modulesim {

class Core;

void serveInformation(Core& core);
void serveSettings(Core& core);
void serveSending(Core& core);
void serveRoutes(Core& core);
void serveInclusion(Core& core);
void serveExclusion(Core& core);
void serveLearnMode(Core& core);
void serveFailedNodes(Core& core);
void serveRoles(Core& core);
void serveMemory(Core& core);
void serveFirmware(Core& core); // after the memory, whose restart comes first
void serveLoader(Core& core);

} // namespace zorv::modulesim
