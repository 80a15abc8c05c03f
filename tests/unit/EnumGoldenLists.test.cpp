// SPDX-License-Identifier: Apache-2.0
// Every enumeration against the list of its numbers and texts in tests/golden/enums. The tables take their texts from the
// identifiers, so only these lists notice when one is renamed or renumbered, which peers, modules and nodes would not
// understand.
// The lists began as a copy of the declarations. They show that nothing changes by accident, not that it was right.

#include "platform/libtransport/MessageRole.h"
#include "platform/libtransport/Priority.h"
#include "platform/libtransport/TResult.h"
#include "platform/libtransport/tables/TypeDescriptor.h"
#include "platform/libzorvshared/BasicDeviceType.h"
#include "platform/libzorvshared/Capability.h"
#include "platform/libzorvshared/CommandClassAttribs.h"
#include "platform/libzorvshared/CommandClassType.h"
#include "platform/libzorvshared/ControllerCapabilities.h"
#include "platform/libzorvshared/ControllerRole.h"
#include "platform/libzorvshared/DeviceLights.h"
#include "platform/libzorvshared/DeviceNetworkStatus.h"
#include "platform/libzorvshared/DeviceStatus.h"
#include "platform/libzorvshared/GenericDeviceType.h"
#include "platform/libzorvshared/LearnMode.h"
#include "platform/libzorvshared/LearnModeStatus.h"
#include "platform/libzorvshared/ManufacturerId.h"
#include "platform/libzorvshared/ModuleType.h"
#include "platform/libzorvshared/ObserveAction.h"
#include "platform/libzorvshared/ObserveDirection.h"
#include "platform/libzorvshared/RequestNeighborUpdateStatus.h"
#include "platform/libzorvshared/RequestNetworkUpdateStatus.h"
#include "platform/libzorvshared/Security.h"
#include "platform/libzorvshared/SecurityStatus.h"
#include "platform/libzorvshared/SocketActor.h"
#include "platform/libzorvshared/SpecificDeviceType.h"
#include "platform/libzorvshared/SystemStatus.h"
#include "platform/libzorvshared/TransmitOption.h"
#include "platform/libzorvshared/WakeStatus.h"
#include "platform/libzorvshared/ZwApiCommand.h"
#include "tests/testPaths.h"
#include "zwave/libquillet/AddRemoveNodeMsg.h"
#include "zwave/libquillet/CommandClassMsg.h"
#include "zwave/libquillet/ConfigurationMsg.h"
#include "zwave/libquillet/ControlCommandMsg.h"
#include "zwave/libquillet/ControllerInfoMsg.h"
#include "zwave/libquillet/DaemonStatusMsg.h"
#include "zwave/libquillet/FirmwareUpdateMsg.h"
#include "zwave/libquillet/ManageFailedNodeMsg.h"
#include "zwave/libquillet/ManageNvmMsg.h"
#include "zwave/libquillet/NodeInformationMsg.h"
#include "zwave/libquillet/NvmOpEvt.h"
#include "zwave/libquillet/SerialManagerEvt.h"
#include "zwave/libquillet/SessionLayerMsg.h"
#include "zwave/libquillet/SocketStatusMsg.h"

#include <gtest/gtest.h>

#include <boost/filesystem/operations.hpp>
#include <boost/filesystem/path.hpp>

#include <fstream>
#include <iterator>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace zorv {
namespace {

using Rows = std::vector<std::pair<int, std::string>>;

using Enumerations = testing::Types<
    AddRemoveOp::Enum, BasicDeviceType::Enum, Capability::Enum, CommandClassAttribs::Enum, CommandClassType::Enum,
    ConfigurationStatus::Enum, ControlCommandOp::Enum, ControllerCapabilities::Enum, ControllerInfoOption::Enum,
    ControllerRole::Enum, DaemonDetail::Enum, DaemonStatus::Enum, DeviceLights::Enum, DeviceNetworkStatus::Enum,
    DeviceStatus::Enum, DisplayOption::Enum, FirmwareUpdateStatus::Enum, FrameCast::Enum, GenericDeviceType::Enum,
    GetNodesOp::Enum, LearnMode::Enum, LearnModeStatus::Enum, ManageFailedNodeOp::Enum, ManageFailedNodeStatus::Enum,
    ManageNvmOp::Enum, ManufacturerId::Enum, MessageRole::Enum, ModuleType::Enum, NvmOp::Enum, ObserveAction::Enum,
    ObserveDirection::Enum, Priority::Enum, ProtocolVersion::Enum, ReceivedStatus::Enum,
    RequestNeighborUpdateStatus::Enum, RequestNetworkUpdateStatus::Enum, Security::Enum, SecurityStatus::Enum,
    SerialManagerStatus::Enum, SessionLayerOp::Enum, SessionLayerStatus::Enum, SocketActor::Enum, SocketEvent::Enum,
    SpecificDeviceType::Enum, SystemStatus::Enum, TResult::Enum, TransmitOption::Enum, WakeStatus::Enum,
    ZwApiCommand::Enum>;

Rows goldenRows(std::string const& name) {
    std::ifstream file(sourcePath("tests/golden/enums/" + name + ".txt"));
    if (!file) { throw std::runtime_error("no golden list of " + name); }
    Rows rows;
    std::string number;
    std::string text;
    while (file >> number >> text) { rows.emplace_back(std::stoi(number, nullptr, 0), text); }
    return rows;
}

template <class Enum> class EnumGoldenList : public testing::Test {
protected:
    static TypeDescriptor type() { return describe(Enum()); }
};

struct EnumName {
    template <class Enum> static std::string GetName(int) { return describe(Enum()).name; }
};

TYPED_TEST_SUITE(EnumGoldenList, Enumerations, EnumName);

TYPED_TEST(EnumGoldenList, HoldsTheSameNumbersAndTextsAsTheTable) {
    auto const type = this->type();
    Rows rows;
    for (auto const& each : type.texts) { rows.emplace_back(each.value, each.text); }
    EXPECT_EQ(rows, goldenRows(type.name));
}

TYPED_TEST(EnumGoldenList, IsWrittenAndReadAsItStands) {
    auto const type = this->type();
    bool const hasField = type.kind == TypeDescriptor::Kind::flagSet && !type.elements.empty();
    auto const field = hasField ? '|' + type.elements[0].texts[0].text : std::string();
    auto const rows = goldenRows(type.name);
    ASSERT_FALSE(rows.empty());
    for (auto const& [number, text] : rows) {
        EXPECT_EQ(toString(static_cast<TypeParam>(number)), text + field);
        auto read = static_cast<TypeParam>(number + 1);
        parse(text, read);
        EXPECT_EQ(static_cast<int>(read), number) << text;
    }
}

template <class List> struct Names;
template <class... Enums> struct Names<testing::Types<Enums...>> {
    static std::set<std::string> all() { return {describe(Enums()).name...}; }
};

TEST(EnumGoldenLists, AreThoseOfTheEnumerationsThatAreTested) {
    std::set<std::string> files;
    for (auto const& entry : boost::filesystem::directory_iterator(sourcePath("tests/golden/enums"))) {
        files.insert(entry.path().stem().string());
    }
    EXPECT_EQ(files, Names<Enumerations>::all());
}

/// How often the headers below a folder declare an enumeration's operations.
std::size_t declarationsBelow(std::string const& folder) {
    std::size_t count = 0;
    for (auto const& entry : boost::filesystem::recursive_directory_iterator(sourcePath(folder))) {
        if (entry.path().extension() != ".h" || entry.path().filename() == "EnumDeclaration.h") { continue; }
        std::ifstream file(entry.path().string());
        for (std::string line; std::getline(file, line);) {
            if (line.rfind("ZORV_ENUM_DECLARE(", 0) == 0) { ++count; }
        }
    }
    return count;
}

TEST(EnumGoldenLists, CoverEveryEnumerationThatAHeaderDeclares) {
    EXPECT_EQ(declarationsBelow("platform") + declarationsBelow("zwave"), Names<Enumerations>::all().size());
}

} // namespace
} // namespace zorv
