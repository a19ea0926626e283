#pragma once

#include "platform/compound_manifest.h"
#include "platform/compound_storage.h"
#include "support/temp_folder.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pm {

inline std::vector<std::u16string> names(IStorage& storage) {
    std::vector<std::u16string> found;
    const auto elements = storage.EnumElements();
    STATSTG element;
    while (elements && elements->Next(element) == IEnumSTATSTG::Result::element) {
        found.push_back(element.name + (element.is_storage ? u"/" : u""));
    }
    return found;
}

using Names = std::vector<std::u16string>;

inline void write(IStorage& storage, std::u16string_view name, std::string_view content) {
    const auto stream = storage.CreateStream(name);
    ASSERT_NE(nullptr, stream);
    EXPECT_TRUE(stream->Write(content.data(), content.size()));
}

inline std::string read(IStorage& storage, std::u16string_view name) {
    const auto stream = storage.OpenStream(name);
    return stream ? test::read_rest(*stream) : "(null)";
}

class CompoundStorage : public testing::Test {
protected:
    CompoundStorage() : root(StgCreateDocfile(name)) {}

    // What the file holds from now on.
    void reopen() {
        root.reset();
        root = StgOpenStorage(name);
    }

    test::TempFolder folder;
    std::u16string name = folder.wide("file.doc");
    std::unique_ptr<IStorage> root;
};

} // namespace pm
