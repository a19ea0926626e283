#pragma once

#include "filers/pmpia.h"

namespace pm {
class StringTable;
}

// Reads the description of a device: a folder of tables, one file each, beside a file of translated texts,
// whose name is the name of the description. Fills the subtrees of the capabilities; the tables and the tree
// are told in docs/pdt.md.
class PM_PDTFile : public PM_PIAFile {
public:
    using PM_PIAFile::PM_PIAFile;
    ~PM_PDTFile() override;

    // Numbers (PM_Severe, place u"PM_PDTFile::load()"): 52 no object, 51 an empty base, 54 another type, each
    // with the base; those of SectionReader for a table that can't be read; with the string file 56 if that
    // can't be read, 66 if joins would write more than 2,000,000 nodes and properties. Bad cells are no
    // failure. What SetProperty raises passes.
    void load(PM_Object* object, const char16_t* root, PM_Object::FileType type) override;
    // The version text of the description, from the table "Global Static Lists".
    void getVersion(char16_t* buffer, std::size_t size) override;

private:
    void load_strings(pm::StringTable& strings);
};
