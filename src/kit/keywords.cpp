#include "keywords.h"

namespace pm::kit::keywords {

namespace {

constexpr std::string_view io_types_words[] = {"None",  "Does_Own_IO", "File",   "System",
                                               "RS232", "Parallel",    "Network"};
constexpr std::string_view parity_words[] = {"None", "Odd", "Even", "Mark", "Space"};
constexpr std::string_view data_bits_words[] = {"DataBits_5", "DataBits_6",  "DataBits_7",
                                                "DataBits_8", "DataBits_16", "DataBits_16X"};
constexpr std::string_view stop_bits_words[] = {"OneStopBit = ONESTOPBIT", "One5StopBits = ONE5STOPBITS",
                                                "TwoStopBits = TWOSTOPBITS"};
constexpr std::string_view handshakes_words[] = {"None",
                                                 "fXIn = 0x1",
                                                 "fXOut = 0x2",
                                                 "Cts = 0x4",
                                                 "Rts_Disable = 0x8",
                                                 "Rts_Enable = 0x10",
                                                 "Rts_Handshake = 0x20",
                                                 "Rts_Toggle = 0x40",
                                                 "Dtr_Disable = 0x80",
                                                 "Dtr_Enable = 0x100",
                                                 "Dtr_Handshake = 0x200",
                                                 "Dsr = 0x400",
                                                 "Rlsd = 0x800"};
constexpr std::string_view status_words[] = {"Model = 0x1",           "PaperSource = 0x2",
                                             "PaperSize = 0x4",       "PaperSourceCaps = 0x08",
                                             "PaperSizeCaps = 0x10",  "PaperOrientation = 0x20",
                                             "CartridgeFonts = 0x40", "SoftFonts = 0x80",
                                             "InternalFonts = 0x100", "MemorySize = 0x200",
                                             "FreeMemory = 0x400",    "OutOfMedia = 0x800",
                                             "OutOfInk = 0x1000",     "Jams = 0x2000"};
constexpr std::string_view dithering_types_words[] = {"NoDitheringMustMatch",
                                                      "NoDitheringNearestColor",
                                                      "OrderedDithering",
                                                      "ClusteredOrderedDithering",
                                                      "DispersedOrderedDithering",
                                                      "CustomMatrixOrderedDithering",
                                                      "FineDithering",
                                                      "LineArt",
                                                      "ErrorDiffusion",
                                                      "Grayscale",
                                                      "CustomHardwareDithering"};
constexpr std::string_view renderers_words[] = {"Neither", "FrameBuffer", "BothDitherAndFB"};
constexpr std::string_view media_groups_words[] = {"ANSI",
                                                   "ANSI_expand",
                                                   "ARCH",
                                                   "ARCH_expand",
                                                   "ISO",
                                                   "ISO_expand",
                                                   "OversizeISO",
                                                   "Business",
                                                   "Business_expand",
                                                   "JIS",
                                                   "EnvelopeANSI",
                                                   "EnvelopeISO",
                                                   "UserDefined",
                                                   "Raster",
                                                   "UserDefinedImperial",
                                                   "UserDefinedMetric",
                                                   "UserDefinedRaster"};
constexpr std::string_view feeds_words[] = {"None", "ManualSheet", "SheetFeeder", "RollFeeder"};
constexpr std::string_view collating_types_words[] = {"None", "Regular", "Custom"};
constexpr std::string_view stapling_locations_words[] = {"PortraitUL", "PortraitUR", "PortraitSaddle",
                                                         "LandscapeUL", "LandscapeUR"};
constexpr std::string_view stapling_times_words[] = {"None", "Endofjob", "Endofset", "Endofpage"};
constexpr std::string_view folding_types_words[] = {"Letter",    "Zfold",  "Doublegate", "Leftgate",
                                                    "Rightgate", "Saddle", "Xfold"};
constexpr std::string_view folding_times_words[] = {"Endofjob", "Endofset", "Endofpage"};
constexpr std::string_view cutting_times_words[] = {"Endofjob", "Endofset", "Endofpage"};
constexpr std::string_view raster_abilities_words[] = {"CanDoRasters", "DrawsRastersAsRasters",
                                                       "DrawsRastersAsVectors", "OrientationPrefs"};
constexpr std::string_view raster_orientations_words[] = {
    "IOrient_X_Left_To_Right_Top_First",  "IOrient_X_Left_To_Right_Bottom_First",
    "IOrient_X_Right_To_Left_Top_First",  "IOrient_X_Right_To_Left_Bottom_First",
    "IOrient_Y_Top_To_Bottom_Left_First", "IOrient_Y_Top_To_Bottom_Right_First",
    "IOrient_Y_Bottom_To_Top_Left_First", "IOrient_Y_Bottom_To_Top_Right_First"};
constexpr std::string_view color_systems_words[] = {"Mapped_RGB", "Direct_RGB", "Bitonal", "Gray_Scale",
                                                    "Direct_CMYK"};
constexpr std::string_view selection_methods_words[] = {"MediaSizeByMediaSource = 0x1",
                                                        "MediaSizeByMediaSize = 0x2"};
constexpr std::string_view duplexing_modes_words[] = {"None = 0x1", "Long = 0x2", "Short = 0x4"};
constexpr std::string_view optimizations_words[] = {
    "No Optimizations",
    "Endpoint Swap",
    "Pen Sorting",
    "Limited Motion Optimzation",
    "Full Motion Optimization",
    "Elimination of Overlapped Horizontal and Vertical Vectors",
    "Elimination of Overlapped Diagonal Vectors"};
constexpr std::string_view line_types_words[] = {"Solid",
                                                 "Dashed",
                                                 "Dotted",
                                                 "Dash_Dot",
                                                 "Short_Dash",
                                                 "Medium_Dash",
                                                 "Long_Dash",
                                                 "Short_Dash_X2",
                                                 "Medium_Dash_X2",
                                                 "Long_Dash_X2",
                                                 "Medium_Long_Dash",
                                                 "Medium_Dash_Short_Dash_Short_Dash",
                                                 "Long_Dash_Short_Dash",
                                                 "Long_Dash_Dot_Dot",
                                                 "Long_Dash_Dot",
                                                 "Medium_Dash_Dot_Short_Dash_Dot",
                                                 "Sparse_Dot",
                                                 "User_Defined"};
constexpr std::string_view line_type_abilities_words[] = {"LinetypeScale", "LinetypeAdaptive"};
constexpr std::string_view start_string_owners_words[] = {"PreInitString", "PostInitString",
                                                          "TerminationString"};
constexpr std::string_view pen_owners_words[] = {"NumberOfPens",     "PenColor",           "PenWidth",
                                                 "PenSpeed",         "AreaFillCorrection", "PenOptimization",
                                                 "PenChangingEnable"};
constexpr std::string_view color_owners_words[] = {
    "Resolution", "PhysicalMemory",      "ColorDepth",  "ColorSystem",        "ISMMaxMem",
    "OLEMaxMem",  "HardSoftNoDithering", "ColorVsMono", "RastColorVsResPref", "InstalledMemory",
    "ICMMethod",  "ICMIntent",           "DMColor",     "LinesOverwrite"};
constexpr std::string_view io_owners_words[] = {"Portname",      "Type",       "Protocol",
                                                "BaudRate",      "Handshake",  "InputTimeout",
                                                "OutputTimeout", "PlotToFile", "Pathname"};
constexpr std::string_view media_owners_words[] = {"SelectionMethod",
                                                   "Type",
                                                   "Source",
                                                   "Feed",
                                                   "Stapling",
                                                   "Cutting",
                                                   "Folding",
                                                   "Collating",
                                                   "Size",
                                                   "Bounds",
                                                   "PrintableArea",
                                                   "Dimensional",
                                                   "LandscapeMode",
                                                   "DestinationNumberOfCopies",
                                                   "DuplexingMode",
                                                   "Margins",
                                                   "LongplotReductionDmScale",
                                                   "DmOrientation",
                                                   "DmFormName",
                                                   "ActualBounds",
                                                   "CanDoRasters",
                                                   "DrawsRastersAsRasters"};

} // namespace

constinit const Words io_types = io_types_words;
constinit const Words parity = parity_words;
constinit const Words data_bits = data_bits_words;
constinit const Words stop_bits = stop_bits_words;
constinit const Words handshakes = handshakes_words;
constinit const Words status = status_words;
constinit const Words dithering_types = dithering_types_words;
constinit const Words renderers = renderers_words;
constinit const Words media_groups = media_groups_words;
constinit const Words feeds = feeds_words;
constinit const Words collating_types = collating_types_words;
constinit const Words stapling_locations = stapling_locations_words;
constinit const Words stapling_times = stapling_times_words;
constinit const Words folding_types = folding_types_words;
constinit const Words folding_times = folding_times_words;
constinit const Words cutting_times = cutting_times_words;
constinit const Words raster_abilities = raster_abilities_words;
constinit const Words raster_orientations = raster_orientations_words;
constinit const Words color_systems = color_systems_words;
constinit const Words selection_methods = selection_methods_words;
constinit const Words duplexing_modes = duplexing_modes_words;
constinit const Words optimizations = optimizations_words;
constinit const Words line_types = line_types_words;
constinit const Words line_type_abilities = line_type_abilities_words;
constinit const Words start_string_owners = start_string_owners_words;
constinit const Words pen_owners = pen_owners_words;
constinit const Words color_owners = color_owners_words;
constinit const Words io_owners = io_owners_words;
constinit const Words media_owners = media_owners_words;

} // namespace pm::kit::keywords
