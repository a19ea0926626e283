#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace pm {

// Structured storage: a compound file holds a tree of storages (folders) with streams (files) in them. The
// operations and their rules are those of the system interfaces of the same names.
//
// Names have 1 to 31 units, none of / \ : !, and are compared without case within a storage. Creating an
// element replaces one of the same name, whether storage or stream. A failure is a false or null result;
// nothing here throws but std::bad_alloc. What is written stands in the file when the root storage dies.

class IStream {
public:
    virtual ~IStream() = default;
    // All or nothing: false if fewer bytes are left.
    virtual bool Read(void* buffer, std::size_t size) = 0;
    virtual bool Write(const void* data, std::size_t size) = 0;
};

struct STATSTG {
    std::u16string name;
    bool is_storage = false;
};

class IEnumSTATSTG {
public:
    enum class Result { element, end, failure };
    virtual ~IEnumSTATSTG() = default;
    // One element at a time, in the compound format's own order: shorter names first, names of one length by
    // their uppercase units.
    virtual Result Next(STATSTG& element) = 0;
};

class IStorage {
public:
    virtual ~IStorage() = default;
    virtual std::unique_ptr<IStream> CreateStream(std::u16string_view name) = 0;
    virtual std::unique_ptr<IStream> OpenStream(std::u16string_view name) = 0;
    virtual std::unique_ptr<IStorage> CreateStorage(std::u16string_view name) = 0;
    virtual std::unique_ptr<IStorage> OpenStorage(std::u16string_view name) = 0;
    virtual std::unique_ptr<IEnumSTATSTG> EnumElements() = 0;
};

// Makes a new compound file, replacing one that is there, for exclusive use. Null if the file can't be made
// or is in use by another root storage, in this process or another.
std::unique_ptr<IStorage> StgCreateDocfile(std::u16string_view name);

enum class StorageFile { yes, no, unreadable };
// Whether a file is a compound file.
StorageFile StgIsStorageFile(std::u16string_view name);

// Opens a compound file for exclusive use, as above.
std::unique_ptr<IStorage> StgOpenStorage(std::u16string_view name);

} // namespace pm
