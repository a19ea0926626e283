#include "base/deliver.h"

ZT_Error_Handler::~ZT_Error_Handler() = default;

namespace pm {

namespace {

constexpr int kind_cancelled = 6;
constexpr int taken = 2;

int call_by_kind(ZT_Error_Handler& handler, const ZT_Exception& e) {
    switch (e.kind()) {
    case 0:
        handler.on_kind_0(e.m_res_handle, e.m_number, e.m_place, e.m_detail, e.m_source);
        return taken;
    case 1:
        return handler.on_warning(e.m_res_handle, e.m_number, e.m_place, e.m_detail, e.m_source);
    case 3:
        return handler.on_kind_3(e.m_res_handle, e.m_number, e.m_place, e.m_detail, e.m_source);
    case 4:
        handler.on_severe(e.m_res_handle, e.m_number, e.m_place, e.m_detail, e.m_source);
        return taken;
    case 5:
        handler.on_kind_5(e.m_res_handle, e.m_number, e.m_place, e.m_detail, e.m_source);
        return taken;
    default:
        return handler.on_error(e.m_res_handle, e.m_number, e.m_place, e.m_detail, e.m_source);
    }
}

} // namespace

int deliver(ZT_Error_Handler& handler, const ZT_Exception& exception) {
    if (exception.kind() == kind_cancelled) return 0;
    handler.set_arguments(exception.m_args, exception.m_arg_count);
    return call_by_kind(handler, exception);
}

} // namespace pm
