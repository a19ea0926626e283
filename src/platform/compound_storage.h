#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace pm {

// Structured storage: a compound file holds a tree of storages (folders) with streams (files) in them. The
// operations and their rules are those of the system interfaces of the same names.
//
// Names have 1 to 31 units, none of / \ : !, and are compared without case within a storage. Creating an
// element replaces one of the same name, whether storage or stream. A failure is a false or null result, also
// where there is no memory for a file or a stream; nothing here throws but std::bad_alloc for the small
// objects. Objects may die in any order. Those of an element that was replaced, or whose root storage died,
// only fail from then on.
//
// What is written stands in the file when the root storage dies, also by an exception. Until then, or until
// Commit, the file is a compound file with what stood in it before.

class IStream {
public:
    virtual ~IStream() = default;
    // All or nothing: false, and the position as it was, if fewer bytes are left.
    virtual bool Read(void* buffer, std::size_t size) = 0;
    virtual bool Write(const void* data, std::size_t size) = 0;
};

struct STATSTG {
    std::u16string name;
    bool is_storage = false;
    bool repeated = false; // a further entry of the name before it: only the first can be opened
};

class IEnumSTATSTG {
public:
    enum class Result { element, end, failure };
    virtual ~IEnumSTATSTG() = default;
    // One element at a time, in the compound format's own order: shorter names first, names of one length by
    // their uppercase units. Those that can't be opened come too. Ends with a failure if there are entries in
    // the file that have no name or are out of reach.
    virtual Result Next(STATSTG& element) = 0;
};

class IStorage {
public:
    virtual ~IStorage() = default;
    // Null if the name isn't allowed; a stream is open at its start.
    virtual std::unique_ptr<IStream> CreateStream(std::u16string_view name) = 0;
    virtual std::unique_ptr<IStorage> CreateStorage(std::u16string_view name) = 0;
    // Null if there is no element of that name, or one of the other kind, or if it is broken in the file.
    virtual std::unique_ptr<IStream> OpenStream(std::u16string_view name) = 0;
    virtual std::unique_ptr<IStorage> OpenStorage(std::u16string_view name) = 0;
    virtual std::unique_ptr<IEnumSTATSTG> EnumElements() = 0;
    // Writes the file as the tree stands; of use to learn whether that fails, since the root storage's end
    // does the same and can't tell. False if there is no room (the file is as it was before) or the writing
    // fails. Below the root nothing happens.
    [[nodiscard]] virtual bool Commit() = 0;
};

// Makes a new, empty compound file, replacing a file that is there, for exclusive use. Null if it can't be
// made or is in use by another root storage, in this process or another.
std::unique_ptr<IStorage> StgCreateDocfile(std::u16string_view name);

enum class StorageFile { yes, no, unreadable };
// Whether a file begins as a compound file does.
StorageFile StgIsStorageFile(std::u16string_view name);

// Opens a compound file, of whoever's writing, for exclusive use. Null if it can't be read and written, is in
// use as above, or is broken as a whole.
std::unique_ptr<IStorage> StgOpenStorage(std::u16string_view name);

// A compound file in memory; what is written to it stays there.
std::unique_ptr<IStorage> StgOpenStorageOnBytes(std::span<const std::byte> file);

} // namespace pm
