#pragma once

#include "filers/pmfile.h"
#include "platform/compound_storage.h"
#include "store/tree_cursor.h"
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

class PM_Property;

// Reads and writes DOC files: compound files with a storage for each node and a stream for each property. The
// format is told in docs/doc.md. The whole file belongs to one filer at a time.
class PM_DOCFile : public PM_File {
public:
    explicit PM_DOCFile(ZT_Error_Handler* handler) : PM_File(handler) {}
    ~PM_DOCFile() override;

    // Elements come in the order of the compound format; one called "Version", in any case and at any level,
    // is passed over; a boolean comes back as a long. Numbers: 66 (PM_Severe) for whatever can't be read,
    // when it is its turn, and what setData raises.
    void load(PM_Object* target, const char16_t* base, PM_Object::FileType type) override;
    // Numbers: 60 (PM_Severe) for an element that can't be written, 58 (PM_Warning) for a value of more than
    // 1024 bytes, as wide text or in the narrow code page, 55. What was written before a failure stays in the
    // file, with the element that failed as far as it was begun. `tag` isn't used.
    void save(const PM_Object* source, const char16_t* subtree, PM_Object::FileType type,
              const char16_t* tag) override;
    // A compound file has no stream form: does nothing.
    void attach(std::iostream* stream) override;
    // Number 56 (PM_Severe) for a file that can't be opened or made, is in use or is no compound file.
    void open(const char16_t* name, bool write) override;
    void close() override;
    // The number in "Version", such as "1.000000". Number 66 if there is no such stream.
    void getVersion(char16_t* buffer, std::size_t size) override;

private:
    void write_version();
    void write_properties(pm::IStorage& storage, PM_Iterator& walk);
    void write_nodes(PM_Iterator& walk);
    void write_record(pm::IStorage& storage, const char16_t* name, const PM_Property& prop);
    void write(pm::IStream& stream, std::span<const char> bytes);
    std::unique_ptr<pm::IStream> create_stream(pm::IStorage& storage, const char16_t* name);
    std::unique_ptr<pm::IStorage> create_storage(pm::IStorage& parent, const char16_t* name);

    void load_elements(pm::TreeCursor& place);
    void load_stream(pm::TreeCursor& place, pm::IStorage& storage, std::u16string_view name);
    void store_value(pm::TreeCursor& place, const pm::TreeCursor::Name& name, std::uint32_t type,
                     std::span<const char> value);

    [[noreturn]] void raise_not_read(const char16_t* place) const;
    [[noreturn]] void raise_not_written() const;

    std::shared_ptr<pm::IStorage> m_storage;
};
