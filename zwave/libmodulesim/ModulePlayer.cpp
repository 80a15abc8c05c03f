// SPDX-License-Identifier: Apache-2.0
#include "zwave/libmodulesim/ModulePlayer.h"

#include <chrono>
#include <utility>

namespace zorv::modulesim {

ModulePlayer::ModulePlayer(EventLoop& loop, SimulatedNetwork network, ToHost toHost)
    : loop_(loop), module_(std::move(network)), toHost_(std::move(toHost)) {
    module().start();
}

void ModulePlayer::receive(Bytes const& bytes) {
    received_.insert(received_.end(), bytes.begin(), bytes.end());
    module();
}

SimulatedModule& ModulePlayer::module() {
    next_ = Timer(loop_, Milliseconds(0), [this] { goOn(); });
    return module_;
}

void ModulePlayer::goOn() {
    auto const now = std::chrono::steady_clock::now();
    module_.tick(now);
    if (!received_.empty()) { module_.receive(std::exchange(received_, {}), now); }
    if (auto const deadline = module_.deadline()) {
        auto const delay = *deadline > now ? std::chrono::ceil<Milliseconds>(*deadline - now) : Milliseconds(0);
        next_ = Timer(loop_, delay, [this] { goOn(); });
    }
    auto const said = module_.takeOutput();
    bool const wasThere = std::exchange(isThere_, module_.isThere());
    if (wasThere != isThere_ && presence_) { presence_(isThere_); }
    if (!said.empty()) { toHost_(said); }
}

} // namespace zorv::modulesim
