// SPDX-License-Identifier: Apache-2.0
#include "tests/property/property.h"

#include "platform/libtransport/toText.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/json.h"
#include "zwave/libquillet/ManageNvmMsg.h"

#include <boost/smart_ptr/make_shared.hpp>

#include <string>
#include <vector>

namespace zorv {

namespace {

/// What a document holds, as it was put in.
struct Contents {
    std::vector<std::string> blobs; ///< in the order in which they are found
    HomeId homeId = 0;
};

/// Makes documents: objects and arrays, with blobs and home ids anywhere among things of no meaning.
class Documents {
public:
    Documents() : below_(generated()), wire_(below_) {}

    Json::Value any(Contents& contents, int depth = 0) {
        auto const kind = depth >= 4 ? 2 + below_(3) : below_(5);
        if (kind == 0) { return object(contents, depth); }
        if (kind == 1) { return array(contents, depth); }
        if (kind == 2) { return blob(contents); }
        if (kind == 3) { return Json::Value(static_cast<Json::UInt>(below_(1000))); }
        return Json::Value("some text");
    }

private:
    /// A blob's own members are of no interest to the search, whatever stands beside them.
    Json::Value blob(Contents& contents) {
        auto const text = wire_.object("zorv::Blob");
        auto value = toJson(text);
        contents.blobs.push_back(
            toText(Blob(value["name_"].asString(), value["offset_"].asUInt(), value["size_"].asUInt(),
                        value["crc_"].asUInt(), value["contents_"].asString())));
        if (below_(2) == 0) { value.removeMember("__name__"); }
        if (below_(4) == 0) { value["homeId_"] = 17U; }
        if (below_(4) == 0) { value["more"][0] = toJson(text); }
        return value;
    }

    Json::Value object(Contents& contents, int depth) {
        Json::Value value(Json::objectValue);
        // Members count in the order of their names.
        if (below_(3) == 0) {
            value["homeId_"] = static_cast<Json::UInt>(1 + below_(0xFFFFFFFF));
            contents.homeId = value["homeId_"].asUInt();
        }
        auto const count = below_(4);
        for (std::uint64_t i = 0; i < count; ++i) { value["key" + std::to_string(i)] = child(contents, depth); }
        return value;
    }

    Json::Value array(Contents& contents, int depth) {
        Json::Value value(Json::arrayValue);
        for (auto left = below_(4); left > 0; --left) { value.append(child(contents, depth)); }
        return value;
    }

    /// Of several home ids the last one that is met counts: a deeper one is met after the one around it.
    Json::Value child(Contents& contents, int depth) { return any(contents, depth + 1); }

    WireTexts::Below below_;
    WireTexts wire_;
};

std::vector<std::string> textsOf(BlobVec const& blobs) {
    std::vector<std::string> texts;
    for (auto const& blob : blobs) { texts.push_back(toText(*blob)); }
    return texts;
}

} // namespace

RC_GTEST_PROP(NvmBackup, GivesTheBlobsAndTheHomeIdOfAnyDocument, ()) {
    Contents contents;
    auto document = Documents().any(contents);
    BlobVec blobs;
    RC_ASSERT(ManageNvmMsg::findBlobs(document, blobs) == contents.homeId);
    RC_ASSERT(textsOf(blobs) == contents.blobs);
}

RC_GTEST_PROP(NvmBackup, IsReadFromAFileWithAnyLineEnds, ()) {
    static TemporaryDirectory const directory;
    Contents contents;
    auto text = toText(Documents().any(contents));
    auto const below = generated();
    for (auto left = below(5); left > 0; --left) {
        text.insert(static_cast<std::size_t>(below(text.size() + 1)), "\n");
    }
    ManageNvmMsg message;
    message.addBlob(boost::make_shared<Blob>("of before", 0));
    auto const result = message.read(directory.write("backup.json", text));
    RC_ASSERT(result == (contents.blobs.empty() ? ZResult::noBlobs : ZResult::success));
    RC_ASSERT(textsOf(message.blobs()) == contents.blobs);
    RC_ASSERT(message.homeId() == contents.homeId);
}

RC_GTEST_PROP(Blob, GivesBackAnyBytesAndNoneOnceItsTextIsAnother, ()) {
    auto const bytes = *rc::gen::arbitrary<OctetVec>();
    Blob blob("name", 0);
    RC_ASSERT(!blob.setContents(bytes));
    RC_ASSERT(blob.getContents() == bytes);
    RC_ASSERT(blob.size() == bytes.size());
    auto text = blob.contents();
    if (text.empty()) { return; }
    auto& character = text[static_cast<std::size_t>(generated()(text.size()))];
    character = static_cast<char>(static_cast<unsigned char>(character) ^ (1U << generated()(8)));
    RC_ASSERT(Blob("name", 0, blob.size(), blob.crc(), text).getContents().empty());
}

} // namespace zorv
