#pragma once

#include <optional>
#include <pm/kit/diagnostic.h>
#include <pm/kit/export.h>
#include <pm/kit/file.h>
#include <pm/kit/stored.h>
#include <pm/tree.h>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The rule of writing: what a file would not give back is told before it is written. Nothing is predicted:
// the bytes are made, read back and compared with the tree that they should hold.
namespace pm::kit {

enum class LossKind {
    lost,       // it isn't there any more
    cut,        // the text or data is shorter
    retyped,    // another type
    re_encoded, // characters that the code page hasn't, or that are read as others
    changed,    // another value for any other reason
    renamed,    // the same value under another name
    moved,      // the same value in another node
    appeared,   // something that the tree doesn't hold
    order,      // the order of a node's properties or children
    source      // the source couldn't give it: a bad line, a repeated name, a value cut while reading
};

// "lost", "cut", "retyped", "re-encoded", "changed", "renamed", "moved", "appeared", "order", "source".
[[nodiscard]] PM_KIT_API std::string_view loss_name(LossKind kind) noexcept;

struct Loss {
    LossKind kind = LossKind::lost;
    std::string path = {};             // as difference.h has them; of source may be empty
    std::string new_path = {};         // of renamed and moved
    std::string reason = {};           // why, in words, without the path and the values
    std::optional<Stored> before = {}; // what was asked for; nothing for a node
    std::optional<Stored> after = {};  // what comes back

    bool operator==(const Loss&) const = default;
};

// One line for the eye: "\a\x: re-encoded: the code page 1252 has not all of its characters: string "Ж" ->
// string "?"".
[[nodiscard]] PM_KIT_API std::string loss_text(const Loss& loss);

// How to write.
struct WriteOptions {
    PM_Object::FileType type = PM_Object::FILE_PIA; // or FILE_DPIA, FILE_DOC
    std::string tag = {};                           // of a PIA header; "compress" in it compresses
    bool utf8 = false;                              // PIA: text in UTF-8, which is read back as UTF-8
    unsigned code_page = 0;     // of narrow text, for writing and reading back; 0: the one that is set
    std::string subtree = "\\"; // the node whose content is written
    // Of a DPIA file, whose sections are the nodes below the subtree: the names and info texts, by
    // Section::node. A node that isn't among them is a section of its own name without an info text.
    std::vector<Section> sections = {};
    // PIA: it is read back as by a reader that takes text for UTF-8 where all of it could be (encoding.h).
    bool guessed = false;
};

struct Prepared {
    std::string bytes = {};        // to be written as they are
    std::vector<Loss> losses = {}; // in the order of the tree; empty: all comes back
    // What changes but is no loss, in words: the version, an order or strictness that the format doesn't
    // keep.
    std::vector<std::string> notes = {};
};

// Makes the bytes in memory and measures what they give back. What can't be written at all (a value too large
// for DOC, raw data of no bytes, a name that no compound file takes) is left out and listed as lost.
//
// For the time of the call the code page is set for the calling thread where one is asked for. Throws Error
// for a type that isn't written, a subtree that isn't there and no place for a temporary file, which DOC
// takes; the library's exceptions for what goes wrong otherwise.
[[nodiscard]] PM_KIT_API Prepared prepare(const Tree& intended, const WriteOptions& options);

// What prepared bytes give back when they are read as `options` tell, as far as they can be. The code page
// and the exceptions are those of prepare().
[[nodiscard]] PM_KIT_API FileContent read_back(const std::string& bytes, const WriteOptions& options);

// What a source couldn't give: its reports, sections that couldn't be read, and those of `diagnostics` that
// tell of lost content (any with severity warning or error and a rule of that kind: repeated-name, cut-text,
// bad-line, lossy-value, unknown-section, trailing-data, ...).
[[nodiscard]] PM_KIT_API std::vector<Loss> source_losses(const FileContent& source,
                                                         std::span<const Diagnostic> diagnostics = {});

// What writing a source anew changes in form only, a line each: "version 1.0 becomes 2.0", "the body is no
// longer compressed", "the header's tag isn't kept", "comments aren't kept", "numbers, blanks or line ends
// are written in another form". Measured on the source's tree as it was read.
[[nodiscard]] PM_KIT_API std::vector<std::string> form_changes(const FileContent& source,
                                                               const WriteOptions& options);

// The options that write a source as it is: its type where that is written, its tag, its sections.
[[nodiscard]] PM_KIT_API WriteOptions options_of(const FileContent& source);

} // namespace pm::kit
