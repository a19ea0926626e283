#include "platform/compound_storage.h"

#include "platform/compound_format.h"
#include "platform/compound_reader.h"
#include "platform/compound_tree.h"
#include "platform/compound_writer.h"
#include "platform/locked_file.h"
#include <algorithm>
#include <cstring>
#include <iterator>
#include <new>
#include <optional>
#include <utility>

namespace pm {

namespace {

struct OpenTree {
    std::unique_ptr<CompoundTree> tree;
    bool changed = false; // since it was last written
};
using SharedTree = std::shared_ptr<OpenTree>;

// What `action` says; false where there is no memory for it.
template<class Action>
bool if_memory_lasts(Action action) {
    try {
        return action();
    } catch (const std::bad_alloc&) {
        return false;
    }
}

class Stream final : public IStream {
public:
    Stream(SharedTree tree, CompoundElement& element) : m_tree(std::move(tree)), m_element(element) {}

    bool Read(void* buffer, std::size_t size) override {
        if (!m_element.attached || size > m_element.data.size() - m_position) return false;
        if (size > 0) std::memcpy(buffer, m_element.data.data() + m_position, size);
        m_position += size;
        return true;
    }

    bool Write(const void* data, std::size_t size) override {
        if (!m_element.attached || size > compound::largest_file - m_position) return false;
        if (size == 0) return true;
        m_tree->changed = true;
        std::pmr::vector<std::byte>& bytes = m_element.data;
        const auto* from = static_cast<const std::byte*>(data);
        const std::size_t over = std::min(size, bytes.size() - m_position);
        const bool grown = if_memory_lasts([&] {
            bytes.insert(bytes.end(), from + over, from + size);
            return true;
        });
        if (!grown) return false;
        std::copy(from, from + over, bytes.begin() + static_cast<std::ptrdiff_t>(m_position));
        m_position += size;
        return true;
    }

private:
    SharedTree m_tree;
    CompoundElement& m_element;
    std::size_t m_position = 0;
};

// Goes on from the last place it gave, so that it bears changes between two steps: a place stays as long as
// the storage, whatever element stands there.
class Enumerator final : public IEnumSTATSTG {
public:
    Enumerator(SharedTree tree, CompoundElement& storage) : m_tree(std::move(tree)), m_storage(storage) {}

    Result Next(STATSTG& element) override {
        if (!m_storage.attached) return Result::failure;
        if (m_repeats > 0) {
            --m_repeats;
            element.repeated = true;
        } else {
            const auto next = m_last ? std::next(*m_last) : m_storage.children.begin();
            if (next == m_storage.children.end()) return m_storage.complete ? Result::end : Result::failure;
            m_last = next;
            m_given = m_storage.given = next->second;
            m_repeats = m_given->repeats;
            element.repeated = false;
        }
        element.name = m_given->name;
        element.is_storage = m_given->kind == CompoundKind::storage;
        return Result::element;
    }

private:
    SharedTree m_tree;
    CompoundElement& m_storage;
    std::optional<CompoundChildren::iterator> m_last;
    const CompoundElement* m_given = nullptr;
    std::size_t m_repeats = 0;
};

class Storage : public IStorage {
public:
    Storage(SharedTree tree, CompoundElement& element) : m_tree(std::move(tree)), m_element(element) {}

    std::unique_ptr<IStream> CreateStream(std::u16string_view name) override {
        return handle<Stream>(create(name, CompoundKind::stream));
    }
    std::unique_ptr<IStorage> CreateStorage(std::u16string_view name) override {
        return handle<Storage>(create(name, CompoundKind::storage));
    }
    std::unique_ptr<IStream> OpenStream(std::u16string_view name) override {
        return handle<Stream>(find(name, CompoundKind::stream));
    }
    std::unique_ptr<IStorage> OpenStorage(std::u16string_view name) override {
        return handle<Storage>(find(name, CompoundKind::storage));
    }
    std::unique_ptr<IEnumSTATSTG> EnumElements() override {
        return handle<Enumerator>(usable() ? &m_element : nullptr);
    }
    bool Commit() override { return m_element.attached; }

protected:
    OpenTree& open_tree() { return *m_tree; }

private:
    bool usable() const { return m_element.attached && m_element.sound; }

    CompoundElement* create(std::u16string_view name, CompoundKind kind) {
        CompoundElement* element = usable() ? m_tree->tree->create(m_element, name, kind) : nullptr;
        if (element != nullptr) m_tree->changed = true;
        return element;
    }

    CompoundElement* find(std::u16string_view name, CompoundKind kind) {
        CompoundElement* element = usable() ? m_tree->tree->find(m_element, name) : nullptr;
        return element != nullptr && element->kind == kind && element->sound ? element : nullptr;
    }

    template<class Handle>
    std::unique_ptr<Handle> handle(CompoundElement* element) {
        return element != nullptr ? std::make_unique<Handle>(m_tree, *element) : nullptr;
    }

    SharedTree m_tree;
    CompoundElement& m_element;
};

class RootStorage final : public Storage {
public:
    // Without a file everything stays in memory.
    RootStorage(const SharedTree& tree, std::unique_ptr<LockedFile> file)
        : Storage(tree, tree->tree->root()), m_file(std::move(file)) {}

    ~RootStorage() override {
        (void)write();
        (void)if_memory_lasts([this] {
            open_tree().tree->detach(open_tree().tree->root());
            return true;
        });
    }
    RootStorage(const RootStorage&) = delete;
    RootStorage& operator=(const RootStorage&) = delete;

    bool Commit() override { return write(); }

private:
    bool write() {
        if (!m_file || !open_tree().changed) return true;
        const bool written = if_memory_lasts([this] {
            const auto content = write_compound_file(*open_tree().tree);
            return content && m_file->replace(*content);
        });
        if (written) open_tree().changed = false;
        return written;
    }

    std::unique_ptr<LockedFile> m_file;
};

std::unique_ptr<IStorage> make_root(std::unique_ptr<CompoundTree> tree, std::unique_ptr<LockedFile> file) {
    if (!tree) return nullptr;
    const auto shared = std::make_shared<OpenTree>(OpenTree{std::move(tree)});
    return std::make_unique<RootStorage>(shared, std::move(file));
}

} // namespace

std::unique_ptr<IStorage> StgCreateDocfile(std::u16string_view name) {
    auto file = LockedFile::create(name);
    if (!file) return nullptr;
    auto tree = std::make_unique<CompoundTree>();
    const auto empty = write_compound_file(*tree);
    if (!empty || !file->replace(*empty)) return nullptr;
    return make_root(std::move(tree), std::move(file));
}

StorageFile StgIsStorageFile(std::u16string_view name) {
    const auto begin = first_bytes(name, compound::signature.size());
    if (!begin) return StorageFile::unreadable;
    const bool same = begin->size() == compound::signature.size() &&
                      std::memcmp(begin->data(), compound::signature.data(), begin->size()) == 0;
    return same ? StorageFile::yes : StorageFile::no;
}

std::unique_ptr<IStorage> StgOpenStorage(std::u16string_view name) {
    auto file = LockedFile::open(name);
    if (!file) return nullptr;
    std::unique_ptr<CompoundTree> tree;
    (void)if_memory_lasts([&file, &tree] {
        const auto content = file->read(compound::largest_file);
        if (content) tree = read_compound_file(*content);
        return content.has_value();
    });
    return make_root(std::move(tree), std::move(file));
}

std::unique_ptr<IStorage> StgOpenStorageOnBytes(std::span<const std::byte> file) {
    return make_root(read_compound_file(file), nullptr);
}

} // namespace pm
