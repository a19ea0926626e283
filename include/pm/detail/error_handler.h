#pragma once

// What error_handler.h declares; included by it.

#include <pm/error_handler.h>

namespace pm {

inline int ReportHandler::tell(int kind, std::uint32_t number, const char16_t* place,
                               const char16_t* detail) {
    const auto view = [](const char16_t* text) {
        return text != nullptr ? std::u16string_view(text) : std::u16string_view();
    };
    return static_cast<int>(on_report(kind, number, view(place), view(detail)));
}

inline void ReportHandler::on_kind_0(std::uint64_t, std::uint32_t number, const char16_t* place,
                                     const char16_t* detail, const char16_t*) {
    tell(0, number, place, detail);
}

inline int ReportHandler::on_warning(std::uint64_t, std::uint32_t number, const char16_t* place,
                                     const char16_t* detail, const char16_t*) {
    return tell(1, number, place, detail);
}

inline int ReportHandler::on_error(std::uint64_t, std::uint32_t number, const char16_t* place,
                                   const char16_t* detail, const char16_t*) {
    return tell(2, number, place, detail);
}

inline int ReportHandler::on_kind_3(std::uint64_t, std::uint32_t number, const char16_t* place,
                                    const char16_t* detail, const char16_t*) {
    return tell(3, number, place, detail);
}

inline void ReportHandler::on_severe(std::uint64_t, std::uint32_t number, const char16_t* place,
                                     const char16_t* detail, const char16_t*) {
    tell(4, number, place, detail);
}

inline void ReportHandler::on_kind_5(std::uint64_t, std::uint32_t number, const char16_t* place,
                                     const char16_t* detail, const char16_t*) {
    tell(5, number, place, detail);
}

} // namespace pm
