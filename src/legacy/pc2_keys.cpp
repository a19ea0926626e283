#include "legacy/pc2_keys.h"

#include "base/text.h"
#include <algorithm>
#include <iterator>

namespace pm {

namespace {

// key, type, default, first and last index, hexadecimal
constexpr Pc2Key keys[] = {
    {u"PlotDriver\\Configured", PROP_LONG},
    {u"PlotDriver\\Type", PROP_LONG},
    {u"PlotDriver\\External", PROP_LONG},
    {u"PlotDriver\\Alias", PROP_LONG},
    {u"PlotDriver\\XDI_Level", PROP_LONG},
    {u"PlotDriver\\MenuName", PROP_STRING},
    {u"PlotDriver\\PathName", PROP_STRING},
    {u"PlotDriver\\PlotterId", PROP_STRING},
    {u"PlotDriver\\Stream", PROP_STRING},
    {u"Plotter/Device\\ConfigRecord", PROP_LONG},
    {u"Plotter/Device\\OptionFlags", PROP_LONG},
    {u"Plotter/Device\\ModelIndex", PROP_LONG},
    {u"Plotter/Device\\InterfaceType", PROP_LONG},
    {u"Plotter/Device\\Pens", PROP_LONG},
    {u"Plotter/Device\\MenuName", PROP_STRING},
    {u"Plotter/Device\\ExecutableName", PROP_STRING},
    {u"Plotter/Device\\DriverName", PROP_STRING},
    {u"Plotter/Device\\DriverData", PROP_VOID},
    {u"Plotter/Device/PenTable\\Pens", PROP_LONG},
    {u"Plotter/Device/PenTable\\Color", PROP_LONG, 0, 1, 255},
    {u"Plotter/Device/WidthTable\\Widths", PROP_LONG},
    {u"Plotter/Device/WidthTable\\Color", PROP_DOUBLE, 0, 1, 255},
    {u"Plotter/Device/SpeedTable\\MaxSpeed", PROP_LONG},
    {u"Plotter/Device/SpeedTable\\Color", PROP_LONG, 0, 1, 255},
    {u"Plotter/Device/LineTypeTable\\Types", PROP_LONG},
    {u"Plotter/Device/LineTypeTable\\Color", PROP_LONG, 0, 1, 255},
    {u"Plotter/Port\\Local", PROP_LONG},
    {u"Plotter/Port\\Enabled", PROP_LONG},
    {u"Plotter/Port\\Handshaking", PROP_LONG},
    {u"Plotter/Port\\DeviceIndex", PROP_LONG},
    {u"Plotter/Port\\IOType", PROP_LONG},
    {u"Plotter/Port\\Link", PROP_LONG, -1},
    {u"Plotter/Port\\ReadTimeOut", PROP_LONG},
    {u"Plotter/Port\\WriteTimeOut", PROP_LONG},
    {u"Plotter/Port\\ReceiveTimeOut", PROP_LONG},
    {u"Plotter/Port\\TransmitTimeOut", PROP_LONG},
    {u"Plotter/Port\\PortName", PROP_STRING},
    {u"Plotter/Port\\ServerName", PROP_STRING},
    {u"Plotter/Port\\WinDeviceName", PROP_STRING},
    {u"Plotter/Port\\WinDriver", PROP_STRING},
    {u"Plotter/Port\\DCB", PROP_VOID},
    {u"Plotter/User\\DeviceDriverCell", PROP_LONG, 0, 1, 2},
    {u"Plotter/User\\BaudRate", PROP_LONG},
    {u"Plotter/User\\IsMetric", PROP_LONG},
    {u"Plotter/User\\OptimizationLevel", PROP_LONG},
    {u"Plotter/User\\MaxOptlevel", PROP_LONG},
    {u"Plotter/User\\PortType", PROP_LONG},
    {u"Plotter/User\\Parity", PROP_LONG},
    {u"Plotter/User\\DataBits", PROP_LONG},
    {u"Plotter/User\\StopBits", PROP_LONG},
    {u"Plotter/User\\Handshaking", PROP_LONG},
    {u"Plotter/User\\Flags", PROP_LONG},
    {u"Plotter/User\\PlotWidth", PROP_DOUBLE},
    {u"Plotter/User\\PlotHeight", PROP_DOUBLE},
    {u"Plotter/User\\MaxWidth", PROP_DOUBLE},
    {u"Plotter/User\\MaxHeight", PROP_DOUBLE},
    {u"Plotter/User\\UserWidth", PROP_DOUBLE, 0, 1, 5},
    {u"Plotter/User\\UserHeight", PROP_DOUBLE, 0, 1, 5},
    {u"Plotter/User\\WidthIncrement", PROP_DOUBLE},
    {u"Plotter/User\\HeightIncrement", PROP_DOUBLE},
    {u"Plotter/User\\WidthOrigin", PROP_DOUBLE},
    {u"Plotter/User\\HeightOrigin", PROP_DOUBLE},
    {u"Plotter/User\\LineWidth", PROP_DOUBLE},
    {u"Plotter/User\\PlotScale", PROP_DOUBLE},
    {u"Plotter/User\\DrawingScale", PROP_DOUBLE},
    {u"Plotter/User\\LongPlotSize", PROP_DOUBLE},
    {u"Plotter/User\\LongPlotXIncrement", PROP_DOUBLE},
    {u"Plotter/User\\LongPlotYIncrement", PROP_DOUBLE},
    {u"Plotter/User\\LongPlotReduction", PROP_DOUBLE},
    {u"Plotter/User\\ViewCorner0", PROP_DOUBLE},
    {u"Plotter/User\\ViewCorner1", PROP_DOUBLE},
    {u"Plotter/User\\ViewCorner2", PROP_DOUBLE},
    {u"Plotter/User\\ViewCorner3", PROP_DOUBLE},
    {u"Plotter/User\\StandardSize", PROP_STRING},
    {u"Plotter/User\\DefaultExtension", PROP_STRING},
    {u"Plotter/User\\View", PROP_STRING},
    {u"Plotter/User\\ViewType", PROP_STRING},
    {u"Plotter/DriverCustom\\fDither", PROP_LONG, 1},
    {u"Plotter/DriverCustom\\fUseDefaultPrn", PROP_LONG},
    {u"Plotter/DriverCustom\\fDoSmartFills", PROP_LONG},
    {u"Plotter/DriverCustom\\fUpdatePens", PROP_LONG},
    {u"Plotter/DriverCustom\\dmOrientation", PROP_STRING},
    {u"Plotter/DriverCustom\\dmPaperSize", PROP_LONG},
    {u"Plotter/DriverCustom\\dmScale", PROP_LONG},
    {u"Plotter/DriverCustom\\dmCopies", PROP_LONG},
    {u"Plotter/DriverCustom\\dmDuplex", PROP_LONG},
    {u"Plotter/DriverCustom\\dmPrintQuality", PROP_LONG},
    {u"Plotter/DriverCustom\\dmTTOption", PROP_LONG},
    {u"Plotter/DriverCustom\\dmFormName", PROP_STRING},
    {u"Plotter/DriverCustom\\dmDeviceName", PROP_STRING},
    {u"Plotter/DriverCustom\\dmDefaultSource", PROP_LONG},
    {u"Plotter/DriverCustom\\dmSpecVersion", PROP_LONG},
    {u"Plotter/DriverCustom\\dmDriverVersion", PROP_LONG},
    {u"Plotter/DriverCustom\\dmDriverExtra", PROP_LONG},
    {u"Plotter/DriverCustom\\dmFields", PROP_LONG, 0, 0, 0, true},
    {u"Plotter/DriverCustom\\dmSize", PROP_LONG},
    {u"Plotter/DriverCustom\\dmPaperLength", PROP_DOUBLE},
    {u"Plotter/DriverCustom\\dmPaperWidth", PROP_DOUBLE},
    {u"Plotter/DriverCustom\\dmColor", PROP_STRING},
    {u"Plotter/DriverCustom\\dmYResolution", PROP_LONG},
    {u"Plotter/DriverCustom\\dmCollate", PROP_LONG},
    {u"Plotter/DriverCustom\\dmLogPixels", PROP_LONG},
    {u"Plotter/DriverCustom\\dmBitsPerPel", PROP_LONG},
    {u"Plotter/DriverCustom\\dmPelsWidth", PROP_LONG},
    {u"Plotter/DriverCustom\\dmPelsHeight", PROP_LONG},
    {u"Plotter/DriverCustom\\dmDisplayFlags", PROP_LONG},
    {u"Plotter/DriverCustom\\dmDisplayFrequency", PROP_LONG},
    {u"Plotter/DriverCustom\\dmICMMethod", PROP_LONG},
    {u"Plotter/DriverCustom\\dmICMIntent", PROP_LONG},
    {u"Plotter/DriverCustom\\dmMediaType", PROP_LONG},
    {u"Plotter/DriverCustom\\dmDitherType", PROP_LONG},
    {u"Plotter/DriverCustom\\Opaque-A", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-B", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-C", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-D", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-E", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-F", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-G", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-H", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-I", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-J", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-K", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-L", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-M", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-N", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-O", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-P", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-Q", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-R", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-S", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-T", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-U", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-V", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-W", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-X", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-Y", PROP_STRING},
    {u"Plotter/DriverCustom\\Opaque-Z", PROP_STRING},
    {u"Plotter/DriverCustom\\PEN#", PROP_STRING, 0, 1, 255},
    {u"Plotter/DriverCustom/pen\\count", PROP_LONG},
    {u"Plotter/DriverCustom", PROP_NONE},
};
static_assert(std::size(keys) == 140);

// A key's name is one component of a path.
static_assert(std::all_of(std::begin(keys), std::end(keys), [](const Pc2Key& each) {
    return each.key.find(u'*') == each.key.npos && each.name().find(u'\\') == each.key.npos;
}));

// An indexed key may have a number behind it. Lengths and last units are looked at first, as they tell most
// keys apart.
bool matches(const Pc2Key& key, std::u16string_view full_name) {
    if (key.indexed()) return starts_with_ignoring_case(full_name, key.key);
    const std::u16string_view wanted = key.key.substr(0, pc2_key_compared);
    const std::u16string_view given = full_name.substr(0, pc2_key_compared);
    return wanted.size() == given.size() && to_lower(wanted.back()) == to_lower(given.back()) &&
           equals_ignoring_case(wanted, given);
}

} // namespace

std::span<const Pc2Key> pc2_keys() {
    return keys;
}

const Pc2Key* find_pc2_key(std::u16string_view full_name) {
    const auto* key = std::find_if(std::begin(keys), std::end(keys),
                                   [full_name](const Pc2Key& each) { return matches(each, full_name); });
    return key != std::end(keys) && key->type != PROP_NONE ? key : nullptr;
}

} // namespace pm
