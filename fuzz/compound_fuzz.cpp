// Reads any bytes as a compound file; one that is sound throughout comes back the same when it is written.

#include "cost.h"
#include "fuzz_support.h"
#include "platform/compound_reader.h"
#include "platform/compound_storage.h"
#include "platform/compound_writer.h"
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace {

using pm::fuzz::require;

// Opens and reads everything; the storages still to be walked are kept here, not on the stack.
void walk(std::unique_ptr<pm::IStorage> root) {
    std::vector<std::unique_ptr<pm::IStorage>> pending;
    pending.push_back(std::move(root));
    while (!pending.empty()) {
        const auto storage = std::move(pending.back());
        pending.pop_back();
        const auto elements = storage->EnumElements();
        pm::STATSTG element;
        while (elements && elements->Next(element) == pm::IEnumSTATSTG::Result::element) {
            if (element.repeated) continue;
            if (element.is_storage) {
                if (auto below = storage->OpenStorage(element.name)) pending.push_back(std::move(below));
            } else if (const auto stream = storage->OpenStream(element.name)) {
                require(pm::compound_name_allowed(element.name));
                std::byte buffer[8];
                while (stream->Read(buffer, sizeof buffer)) {
                }
            }
        }
    }
}

// Each byte of the file is in one stream at most.
std::size_t content_size(const pm::CompoundTree& tree) {
    std::size_t size = 0;
    std::vector<const pm::CompoundElement*> pending{&tree.root()};
    while (!pending.empty()) {
        const pm::CompoundElement& each = *pending.back();
        pending.pop_back();
        size += each.data.size();
        for (const auto& child : each.children)
            pending.push_back(child.second);
    }
    return size;
}

void expect_same(const pm::CompoundTree& one, const pm::CompoundTree& other) {
    std::vector<std::pair<const pm::CompoundElement*, const pm::CompoundElement*>> pending{
        {&one.root(), &other.root()}};
    while (!pending.empty()) {
        const auto [a, b] = pending.back();
        pending.pop_back();
        require(a->kind == b->kind && a->data == b->data && a->class_and_state == b->class_and_state);
        require(b->sound && b->complete && b->repeats == 0);
        require(a->children.size() == b->children.size());
        for (auto at = a->children.begin(), same = b->children.begin(); at != a->children.end();
             ++at, ++same) {
            require(at->second->name == same->second->name);
            pending.emplace_back(at->second, same->second);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto file = std::as_bytes(std::span(data, size));
    const pm::fuzz::CostBound bound(pm::fuzz::load_cost(size));
    const auto tree = pm::read_compound_file(file);
    if (!tree) return 0;
    walk(pm::StgOpenStorageOnBytes(file));
    bound.require_held();
    require(content_size(*tree) <= size);
    const auto written = pm::write_compound_file(*tree);
    if (!written) return 0;
    const auto again = pm::read_compound_file(*written);
    require(again != nullptr);
    expect_same(*tree, *again);
    return 0;
}
