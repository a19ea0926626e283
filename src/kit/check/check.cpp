#include "check/content.h"
#include "check/files.h"
#include "check/folder.h"
#include "stream_bytes.h"
#include <filesystem>
#include <pm/error_number.h>
#include <pm/kit/file.h>

namespace pm::kit {

std::vector<Diagnostic> check_file(std::string_view file, const CheckOptions& options) {
    const ScopedCodePage scope(options.code_page);
    Findings findings(options);
    std::error_code error;
    if (std::filesystem::is_directory(path_of_name(file), error)) {
        check_folder(file, options, findings);
    } else {
        check_named(file, options, findings);
    }
    return findings.take();
}

std::vector<Diagnostic> check_content(std::string_view content, std::string_view name,
                                      const CheckOptions& options) {
    const ScopedCodePage scope(options.code_page);
    Findings findings(options);
    check_content({content, std::string(name), {}}, options, findings);
    return findings.take();
}

std::vector<Diagnostic> check_stream(std::istream& stream, std::string_view name,
                                     const CheckOptions& options) {
    std::string content;
    if (read_to_end(stream, content)) return check_content(std::string_view(content), name, options);
    Findings findings(options);
    say_unreadable(name, PM_ERR_STREAM_FAILED, findings);
    return findings.take();
}

} // namespace pm::kit
