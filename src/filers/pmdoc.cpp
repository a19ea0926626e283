#include "filers/pmdoc.h"

#include "base/little_endian.h"
#include "base/text.h"
#include "platform/code_page.h"
#include "store/pmpmgr.h"
#include "store/tree_cursor.h"
#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstring>
#include <limits>
#include <pm/error_number.h>
#include <pm/iterator.h>
#include <string>
#include <vector>

namespace {

constexpr const char16_t* source = u"$Workfile: pmdoc $ $Revision: #1 $";
constexpr const char16_t* load_place = u"PM_DOCFile::load()";
constexpr const char16_t* save_place = u"PM_DOCFile::save()";
constexpr const char16_t* version_place = u"PM_DOCFile::getVersion()";

constexpr std::u16string_view version_name = u"Version";
constexpr float written_version = 1.0F;
constexpr std::size_t version_units = 512;

constexpr std::size_t record_header = 8; // type, size
constexpr std::size_t value_limit = 1024;

// "%f" of the number in the C locale.
std::u16string version_text(float version) {
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), static_cast<double>(version),
                                   std::chars_format::fixed, 6);
    return {text.data(), end.ptr};
}

// A value that no load could take back. As the property itself says it of a longer one.
[[noreturn]] void raise_too_large(const PM_Property& prop) {
    throw PM_Warning(PM_ERR_VALUE_TOO_LARGE, u"PM_Property::GetData()", prop.name(), source);
}

// What no walk could give is met before its stream is made: a value that isn't there, a number of too many
// bytes, and a raw one without bytes or with too many.
void check_value(const PM_Property& prop) {
    std::array<char, sizeof(double)> number; // only read into
    if (prop.data() == nullptr) prop.GetData(nullptr, 0);
    if (prop.type() == PROP_LONG) prop.GetData(number.data(), sizeof(std::int32_t));
    if (prop.type() == PROP_DOUBLE || prop.type() == PROP_BOOL) prop.GetData(number.data(), number.size());
    if (prop.type() == PROP_VOID && (prop.size() == 0 || prop.size() > std::numeric_limits<int>::max())) {
        throw PM_Error(PM_ERR_BAD_RAW_DATA, u".\\pmobj", u"bad raw data value",
                       u"$Workfile: pmobj $ $Revision: #1 $");
    }
}

// The narrow form of a string of no more than the limit.
std::string narrow_text(const PM_Property& prop) {
    std::array<char16_t, value_limit / sizeof(char16_t)> units; // only the property's own are set
    prop.GetData(units.data(), value_limit);
    const std::u16string_view text(units.data(), prop.size() / sizeof(char16_t));
    return pm::to_narrow(text.substr(0, text.find(u'\0')));
}

// The first bytes of a value as a number; what is missing of it is zero.
template<class Number>
Number number_at(std::span<const char> value) {
    std::array<char, sizeof(Number)> bytes{};
    std::memcpy(bytes.data(), value.data(), std::min(value.size(), bytes.size()));
    return std::bit_cast<Number>(bytes);
}

} // namespace

PM_DOCFile::~PM_DOCFile() = default;

void PM_DOCFile::raise_not_read(const char16_t* place) const {
    throw PM_Severe(PM_ERR_NOT_READ, place, file_name(), source);
}

void PM_DOCFile::raise_not_written() const {
    throw PM_Severe(PM_ERR_NOT_WRITTEN, save_place, file_name(), source);
}

void PM_DOCFile::attach(std::iostream*) {}

void PM_DOCFile::open(const char16_t* name, bool write) {
    if (m_storage) return;
    const std::u16string_view file = pm::view(name);
    if (write) {
        m_storage = pm::StgCreateDocfile(file);
    } else if (pm::StgIsStorageFile(file) != pm::StorageFile::no) {
        m_storage = pm::StgOpenStorage(file);
    }
    if (!m_storage) throw PM_Severe(PM_ERR_NOT_OPENED, u"PM_DOCFile::open()", name, source);
    m_filename = file;
}

void PM_DOCFile::close() {
    m_storage.reset();
}

void PM_DOCFile::getVersion(char16_t* buffer, std::size_t size) {
    const auto stream = m_storage->OpenStream(version_name);
    if (!stream) raise_not_read(version_place);
    std::array<char, sizeof(float)> bytes{};
    (void)stream->Read(bytes.data(), bytes.size());
    copy_version(version_text(std::bit_cast<float>(bytes)), buffer, size);
}

void PM_DOCFile::save(const PM_Object* object, const char16_t* subtree, PM_Object::FileType,
                      const char16_t*) {
    write_version();
    const std::unique_ptr<PM_Iterator> walk(object->newIterator(subtree, 0));
    if (!walk) throw PM_Memory_Exception(save_place, u"piter", source);
    write_properties(*m_storage, *walk);
    write_nodes(*walk);
    if (!m_storage->Commit()) raise_not_written();
}

void PM_DOCFile::write_version() {
    const auto stream = create_stream(*m_storage, version_name.data());
    write(*stream, std::bit_cast<std::array<char, sizeof written_version>>(written_version));
}

std::unique_ptr<pm::IStream> PM_DOCFile::create_stream(pm::IStorage& storage, const char16_t* name) {
    auto stream = storage.CreateStream(name);
    if (!stream) raise_not_written();
    return stream;
}

void PM_DOCFile::write(pm::IStream& stream, std::span<const char> bytes) {
    if (!stream.Write(bytes.data(), bytes.size())) raise_not_written();
}

// What a value that can't be read leaves is part of the format's contract: its type in the stream, and the
// size unless it is a string.
void PM_DOCFile::write_record(pm::IStorage& storage, const char16_t* name, const PM_Property& prop) {
    const auto stream = create_stream(storage, name);
    std::array<char, record_header + value_limit> record; // only what is written is set
    const auto put_header = [&record](PropType type, std::size_t size) {
        auto* const header = reinterpret_cast<unsigned char*>(record.data());
        pm::store_u32(header, static_cast<std::uint32_t>(type));
        pm::store_u32(header + 4, static_cast<std::uint32_t>(size));
    };
    const std::span<char> bytes(record);
    const std::span<char> value = bytes.subspan(record_header);
    put_header(prop.type(), prop.size());
    const bool is_text = prop.type() == PROP_STRING;
    if (prop.size() > value.size()) {
        write(*stream, bytes.first(is_text ? sizeof(std::uint32_t) : record_header));
        prop.GetData(value.data(), value.size());
    }
    std::size_t size = prop.size();
    if (is_text) {
        const std::string narrow = narrow_text(prop);
        if (narrow.size() > value.size()) {
            write(*stream, bytes.first(sizeof(std::uint32_t)));
            raise_too_large(prop);
        }
        size = narrow.size();
        put_header(prop.type(), size);
        std::copy(narrow.begin(), narrow.end(), value.begin());
    } else {
        prop.GetData(value.data(), value.size());
    }
    write(*stream, bytes.first(record_header + size));
}

// A property of no type ends those of its node.
void PM_DOCFile::write_properties(pm::IStorage& storage, PM_Iterator& walk) {
    const PM_Node* const node = walk.currentNode();
    const PM_Property* prop = node != nullptr ? node->first_prop() : nullptr;
    for (; prop != nullptr && prop->type() >= PROP_LONG && prop->type() <= PROP_VOID; prop = prop->next()) {
        check_value(*prop);
        write_record(storage, prop->name(), *prop);
    }
}

std::unique_ptr<pm::IStorage> PM_DOCFile::create_storage(pm::IStorage& parent, const char16_t* name) {
    auto storage = parent.CreateStorage(name);
    if (!storage) raise_not_written();
    return storage;
}

void PM_DOCFile::write_nodes(PM_Iterator& walk) {
    std::vector<std::unique_ptr<pm::IStorage>> open; // from the first level down
    const auto current = [&]() -> pm::IStorage& { return open.empty() ? *m_storage : *open.back(); };
    PM_Object::NodeType step{};
    while (const char16_t* name = walk.nextNode(step)) {
        if (step != PM_Object::NODE_CHILD) open.pop_back();
        if (step == PM_Object::NODE_PARENT) continue;
        open.push_back(create_storage(current(), name));
        write_properties(*open.back(), walk);
    }
}

void PM_DOCFile::load(PM_Object* target, const char16_t* base, PM_Object::FileType) {
    char16_t version[version_units] = {};
    getVersion(version, version_units);
    if (pm::view(base).size() > pm::WorkingPath::capacity) raise_not_read(load_place);
    pm::TreeCursor place(*target, pm::view(base));
    load_elements(place);
}

void PM_DOCFile::load_elements(pm::TreeCursor& place) {
    struct Level {
        std::shared_ptr<pm::IStorage> storage;
        std::unique_ptr<pm::IEnumSTATSTG> elements;
    };
    std::vector<Level> levels;
    const auto enter = [&](std::shared_ptr<pm::IStorage> storage) {
        auto elements = storage ? storage->EnumElements() : nullptr;
        if (!elements) raise_not_read(load_place);
        levels.push_back({std::move(storage), std::move(elements)});
    };
    enter(m_storage);
    pm::STATSTG element;
    while (!levels.empty()) {
        const auto result = levels.back().elements->Next(element);
        if (result == pm::IEnumSTATSTG::Result::failure) raise_not_read(load_place);
        if (result == pm::IEnumSTATSTG::Result::end) {
            levels.pop_back();
            if (!levels.empty() && !place.pop()) raise_not_read(load_place);
            continue;
        }
        if (pm::equals_ignoring_case(element.name, version_name)) continue;
        if (element.repeated || !place.has_room_for(element.name)) raise_not_read(load_place);
        pm::IStorage& parent = *levels.back().storage;
        if (element.is_storage) {
            place.push(element.name);
            enter(parent.OpenStorage(element.name));
        } else {
            load_stream(place, parent, element.name);
        }
    }
}

void PM_DOCFile::load_stream(pm::TreeCursor& place, pm::IStorage& storage, std::u16string_view name) {
    const auto stream = storage.OpenStream(name);
    unsigned char header[record_header];
    if (!stream || !stream->Read(header, sizeof header)) raise_not_read(load_place);
    const std::uint32_t size = pm::load_u32(header + 4);
    std::array<char, value_limit> value; // only the first `size` bytes are set
    if (size > value.size() || !stream->Read(value.data(), size)) raise_not_read(load_place);
    const pm::TreeCursor::Name property(name);
    store_value(place, property, pm::load_u32(header), std::span(value).first(size));
    place.leave(property);
}

// A boolean comes back as a long: kept, callers depend on it.
void PM_DOCFile::store_value(pm::TreeCursor& place, const pm::TreeCursor::Name& name, std::uint32_t type,
                             std::span<const char> value) {
    const std::string_view text(value.data(), value.size());
    switch (type) {
    case PROP_LONG:
        place.set_long(name, number_at<std::int32_t>(value));
        break;
    case PROP_DOUBLE:
        place.set_double(name, number_at<double>(value));
        break;
    case PROP_STRING:
        place.set_string(name, pm::to_wide(text.substr(0, text.find('\0'))));
        break;
    case PROP_BOOL:
        place.set_long(name, number_at<std::uint8_t>(value));
        break;
    case PROP_VOID:
        place.set_data(name, value.data(), value.size(), PROP_VOID);
        break;
    default:
        raise_not_read(load_place);
    }
}
