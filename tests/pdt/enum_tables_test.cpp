#include "pdt/enum_tables.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using pm::lookup_enum;
namespace keywords = pm::keywords;

// Every row by its text, in order, and that there are no more.
void expect_rows(pm::KeywordTable table, const std::vector<pm::Keyword>& rows) {
    for (const pm::Keyword& row : rows) {
        EXPECT_EQ(row.code, lookup_enum(table, row.text));
    }
    ASSERT_EQ(rows.size(), table.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        EXPECT_EQ(rows[row].code, table[row].code);
        EXPECT_EQ(rows[row].text, table[row].text);
    }
    const std::u16string last(rows.back().text);
    for (const std::u16string& unknown :
         {std::u16string(), std::u16string(u"unknown"), last + u" ", u" " + last}) {
        EXPECT_EQ(pm::unknown_keyword, lookup_enum(table, unknown));
    }
}

TEST(KeywordTable, Parity) {
    expect_rows(keywords::parity, {{0, u"None"}, {1, u"Odd"}, {2, u"Even"}, {3, u"Mark"}, {4, u"Space"}});
}

TEST(KeywordTable, DitheringType) {
    expect_rows(keywords::dithering_type, {{0, u"NoDitheringMustMatch"},
                                           {1, u"NoDitheringNearestColor"},
                                           {2, u"OrderedDithering"},
                                           {3, u"ClusteredOrderedDithering"},
                                           {4, u"DispersedOrderedDithering"},
                                           {5, u"CustomMatrixOrderedDithering"},
                                           {6, u"FineDithering"},
                                           {7, u"LineArt"},
                                           {8, u"ErrorDiffusion"},
                                           {9, u"Grayscale"},
                                           {10, u"CustomHardwareDithering"}});
}

TEST(KeywordTable, Handshake) {
    expect_rows(keywords::handshake, {{0, u"None"},
                                      {0x1, u"fXIn = 0x1"},
                                      {0x2, u"fXOut = 0x2"},
                                      {0x4, u"Cts = 0x4"},
                                      {0x8, u"Rts_Disable = 0x8"},
                                      {0x10, u"Rts_Enable = 0x10"},
                                      {0x20, u"Rts_Handshake = 0x20"},
                                      {0x40, u"Rts_Toggle = 0x40"},
                                      {0x80, u"Dtr_Disable = 0x80"},
                                      {0x100, u"Dtr_Enable = 0x100"},
                                      {0x200, u"Dtr_Handshake = 0x200"},
                                      {0x400, u"Dsr = 0x400"},
                                      {0x800, u"Rlsd = 0x800"}});
}

TEST(KeywordTable, BidiStatus) {
    expect_rows(keywords::bidi_status, {{0x1, u"Model = 0x1"},
                                        {0x2, u"PaperSource = 0x2"},
                                        {0x4, u"PaperSize = 0x4"},
                                        {0x8, u"PaperSourceCaps = 0x08"},
                                        {0x10, u"PaperSizeCaps = 0x10"},
                                        {0x20, u"PaperOrientation = 0x20"},
                                        {0x40, u"CartridgeFonts = 0x40"},
                                        {0x80, u"SoftFonts = 0x80"},
                                        {0x100, u"InternalFonts = 0x100"},
                                        {0x200, u"MemorySize = 0x200"},
                                        {0x400, u"FreeMemory = 0x400"},
                                        {0x800, u"OutOfMedia = 0x800"},
                                        {0x1000, u"OutOfInk = 0x1000"},
                                        {0x2000, u"Jams = 0x2000"}});
}

TEST(KeywordTable, IoType) {
    expect_rows(keywords::io_type, {{0, u"None"},
                                    {1, u"Does_Own_IO"},
                                    {2, u"File"},
                                    {3, u"System"},
                                    {4, u"RS232"},
                                    {5, u"Parallel"},
                                    {6, u"Network"}});
}

TEST(KeywordTable, DataBits) {
    expect_rows(keywords::data_bits, {{0, u"DataBits_5"},
                                      {1, u"DataBits_6"},
                                      {2, u"DataBits_7"},
                                      {3, u"DataBits_8"},
                                      {4, u"DataBits_16"},
                                      {5, u"DataBits_16X"}});
}

TEST(KeywordTable, StopBits) {
    expect_rows(keywords::stop_bits, {{0, u"OneStopBit = ONESTOPBIT"},
                                      {1, u"One5StopBits = ONE5STOPBITS"},
                                      {2, u"TwoStopBits = TWOSTOPBITS"}});
}

TEST(KeywordTable, CollatingType) {
    expect_rows(keywords::collating_type, {{0, u"None"}, {1, u"Regular"}, {2, u"Custom"}});
}

TEST(KeywordTable, CuttingTime) {
    expect_rows(keywords::cutting_time, {{1, u"Endofjob"}, {2, u"Endofset"}, {3, u"Endofpage"}});
}

TEST(KeywordTable, MediaGroup) {
    expect_rows(keywords::media_group, {{0, u"ANSI"},
                                        {1, u"ANSI_expand"},
                                        {2, u"ARCH"},
                                        {3, u"ARCH_expand"},
                                        {4, u"ISO"},
                                        {5, u"ISO_expand"},
                                        {6, u"OversizeISO"},
                                        {7, u"Business"},
                                        {8, u"Business_expand"},
                                        {9, u"JIS"},
                                        {10, u"EnvelopeANSI"},
                                        {11, u"EnvelopeISO"},
                                        {12, u"UserDefined"},
                                        {13, u"Raster"},
                                        {14, u"UserDefinedImperial"},
                                        {15, u"UserDefinedMetric"},
                                        {16, u"UserDefinedRaster"}});
}

TEST(KeywordTable, FoldingType) {
    expect_rows(keywords::folding_type, {{0, u"Letter"},
                                         {1, u"Zfold"},
                                         {2, u"Doublegate"},
                                         {3, u"Leftgate"},
                                         {4, u"Rightgate"},
                                         {5, u"Saddle"},
                                         {6, u"Xfold"}});
}

TEST(KeywordTable, FoldingTime) {
    expect_rows(keywords::folding_time, {{1, u"Endofjob"}, {2, u"Endofset"}, {3, u"Endofpage"}});
}

TEST(KeywordTable, Feed) {
    expect_rows(keywords::feed, {{0, u"None"}, {1, u"ManualSheet"}, {2, u"SheetFeeder"}, {3, u"RollFeeder"}});
}

TEST(KeywordTable, StaplingTime) {
    expect_rows(keywords::stapling_time,
                {{0, u"None"}, {1, u"Endofjob"}, {2, u"Endofset"}, {3, u"Endofpage"}});
}

TEST(KeywordTable, StaplingLocation) {
    expect_rows(keywords::stapling_location, {{1, u"PortraitUL"},
                                              {2, u"PortraitUR"},
                                              {3, u"PortraitSaddle"},
                                              {4, u"LandscapeUL"},
                                              {5, u"LandscapeUR"}});
}

TEST(KeywordTable, Linetype) {
    expect_rows(keywords::linetype, {{0, u"Solid"},
                                     {1, u"Dashed"},
                                     {2, u"Dotted"},
                                     {3, u"Dash_Dot"},
                                     {4, u"Short_Dash"},
                                     {5, u"Medium_Dash"},
                                     {6, u"Long_Dash"},
                                     {7, u"Short_Dash_X2"},
                                     {8, u"Medium_Dash_X2"},
                                     {9, u"Long_Dash_X2"},
                                     {10, u"Medium_Long_Dash"},
                                     {11, u"Medium_Dash_Short_Dash_Short_Dash"},
                                     {12, u"Long_Dash_Short_Dash"},
                                     {13, u"Long_Dash_Dot_Dot"},
                                     {14, u"Long_Dash_Dot"},
                                     {15, u"Medium_Dash_Dot_Short_Dash_Dot"},
                                     {16, u"Sparse_Dot"},
                                     {17, u"User_Defined"}});
}

TEST(KeywordTable, RasterAbility) {
    expect_rows(keywords::raster_ability, {{0, u"CanDoRasters"},
                                           {1, u"DrawsRastersAsRasters"},
                                           {2, u"DrawsRastersAsVectors"},
                                           {3, u"OrientationPrefs"}});
}

TEST(KeywordTable, RasterOrientation) {
    expect_rows(keywords::raster_orientation, {{0, u"IOrient_X_Left_To_Right_Top_First"},
                                               {1, u"IOrient_X_Left_To_Right_Bottom_First"},
                                               {2, u"IOrient_X_Right_To_Left_Top_First"},
                                               {3, u"IOrient_X_Right_To_Left_Bottom_First"},
                                               {4, u"IOrient_Y_Top_To_Bottom_Left_First"},
                                               {5, u"IOrient_Y_Top_To_Bottom_Right_First"},
                                               {6, u"IOrient_Y_Bottom_To_Top_Left_First"},
                                               {7, u"IOrient_Y_Bottom_To_Top_Right_First"}});
}

TEST(KeywordTable, ColorSystem) {
    expect_rows(
        keywords::color_system,
        {{0, u"Mapped_RGB"}, {1, u"Direct_RGB"}, {2, u"Bitonal"}, {3, u"Gray_Scale"}, {4, u"Direct_CMYK"}});
}

TEST(KeywordTable, SelectionMethod) {
    expect_rows(keywords::selection_method,
                {{0x1, u"MediaSizeByMediaSource = 0x1"}, {0x2, u"MediaSizeByMediaSize = 0x2"}});
}

TEST(KeywordTable, DuplexingMode) {
    expect_rows(keywords::duplexing_mode,
                {{0x1, u"None = 0x1"}, {0x2, u"Long = 0x2"}, {0x4, u"Short = 0x4"}});
}

TEST(KeywordTable, PenOptimization) {
    expect_rows(keywords::pen_optimization,
                {{0, u"No Optimizations"},
                 {1, u"Endpoint Swap"},
                 {2, u"Pen Sorting"},
                 {3, u"Limited Motion Optimzation"},
                 {4, u"Full Motion Optimization"},
                 {5, u"Elimination of Overlapped Horizontal and Vertical Vectors"},
                 {6, u"Elimination of Overlapped Diagonal Vectors"}});
}

TEST(KeywordTable, LinetypeUserFlags) {
    expect_rows(keywords::linetype_user_flags, {{0, u"LinetypeScale"}, {1, u"LinetypeAdaptive"}});
}

TEST(KeywordTable, InitTermUserFlags) {
    expect_rows(keywords::init_term_user_flags,
                {{0, u"PreInitString"}, {1, u"PostInitString"}, {2, u"TerminationString"}});
}

TEST(KeywordTable, PenUserFlags) {
    expect_rows(keywords::pen_user_flags, {{0, u"NumberOfPens"},
                                           {1, u"PenColor"},
                                           {2, u"PenWidth"},
                                           {3, u"PenSpeed"},
                                           {4, u"AreaFillCorrection"},
                                           {5, u"PenOptimization"},
                                           {6, u"PenChangingEnable"}});
}

TEST(KeywordTable, ResColorMemUserFlags) {
    expect_rows(keywords::res_color_mem_user_flags, {{0, u"Resolution"},
                                                     {1, u"PhysicalMemory"},
                                                     {2, u"ColorDepth"},
                                                     {3, u"ColorSystem"},
                                                     {4, u"ISMMaxMem"},
                                                     {5, u"OLEMaxMem"},
                                                     {6, u"HardSoftNoDithering"},
                                                     {7, u"ColorVsMono"},
                                                     {8, u"RastColorVsResPref"},
                                                     {9, u"InstalledMemory"},
                                                     {10, u"ICMMethod"},
                                                     {11, u"ICMIntent"},
                                                     {12, u"DMColor"},
                                                     {13, u"LinesOverwrite"}});
}

TEST(KeywordTable, IoUserFlags) {
    expect_rows(keywords::io_user_flags, {{0, u"Portname"},
                                          {1, u"Type"},
                                          {2, u"Protocol"},
                                          {3, u"BaudRate"},
                                          {4, u"Handshake"},
                                          {5, u"InputTimeout"},
                                          {6, u"OutputTimeout"},
                                          {7, u"PlotToFile"},
                                          {8, u"Pathname"}});
}

TEST(KeywordTable, MediaUserFlags) {
    expect_rows(keywords::media_user_flags, {{0, u"SelectionMethod"},
                                             {1, u"Type"},
                                             {2, u"Source"},
                                             {3, u"Feed"},
                                             {4, u"Stapling"},
                                             {5, u"Cutting"},
                                             {6, u"Folding"},
                                             {7, u"Collating"},
                                             {8, u"Size"},
                                             {9, u"Bounds"},
                                             {10, u"PrintableArea"},
                                             {11, u"Dimensional"},
                                             {12, u"LandscapeMode"},
                                             {13, u"DestinationNumberOfCopies"},
                                             {14, u"DuplexingMode"},
                                             {15, u"Margins"},
                                             {16, u"LongplotReductionDmScale"},
                                             {17, u"DmOrientation"},
                                             {18, u"DmFormName"},
                                             {19, u"ActualBounds"},
                                             {20, u"CanDoRasters"},
                                             {21, u"DrawsRastersAsRasters"}});
}

TEST(KeywordTable, LandscapeSaddleIsAnUnknownLocation) {
    EXPECT_EQ(pm::unknown_keyword, lookup_enum(keywords::stapling_location, u"LandscapeSaddle"));
}

TEST(KeywordTable, VectorsAreNoUserFlagOfMedia) {
    EXPECT_EQ(pm::unknown_keyword, lookup_enum(keywords::media_user_flags, u"DrawsRastersAsVectors"));
}

TEST(KeywordTable, CaseAndBlanksCount) {
    EXPECT_EQ(pm::unknown_keyword, lookup_enum(keywords::handshake, u"cts = 0x4"));
    EXPECT_EQ(pm::unknown_keyword, lookup_enum(keywords::handshake, u"Cts=0x4"));
    EXPECT_EQ(pm::unknown_keyword, lookup_enum(keywords::handshake, u"Cts"));
}

TEST(KeywordTable, MissHasTheValueThatTheCallerTells) {
    EXPECT_EQ(2, pm::lookup_enum_or(keywords::io_type, u"File", -1));
    EXPECT_EQ(-1, pm::lookup_enum_or(keywords::io_type, u"file", -1));
    EXPECT_EQ(0, pm::lookup_enum_or(keywords::media_group, u"iso", 0));
}

TEST(KeywordTable, MarkOfUnknownTextsIsNoCode) {
    EXPECT_EQ(0xFFFFU, pm::unknown_keyword);
}

} // namespace
