#include "pdt/load_steps.h"

#include "pdt/sections/capability_states.h"
#include "pdt/sections/custom_capability.h"
#include "pdt/sections/dithering.h"
#include "pdt/sections/finishing.h"
#include "pdt/sections/io_method.h"
#include "pdt/sections/linetype_raster.h"
#include "pdt/sections/media_description.h"
#include "pdt/sections/media_destination.h"
#include "pdt/sections/media_size_type.h"
#include "pdt/sections/media_source.h"
#include "pdt/sections/meta.h"
#include "pdt/sections/misc_info.h"
#include "pdt/sections/resolution_color_memory.h"
#include <algorithm>

namespace pm {

namespace {

constexpr LoadStep steps[] = {
    {Section::custom_capability, convert_custom_capability},
    {Section::dithering_method, convert_dithering_method},
    {Section::protocol, read_protocol},
    {Section::io_method, convert_io_method},
    {Section::media_collating, read_media_collating},
    {Section::media_cutting, read_media_cutting},
    {Section::media_description, convert_media_description},
    {Section::media_destination, read_media_destination},
    {Section::media_folding, read_media_folding},
    {Section::media_size, convert_media_size},
    {Section::media_source_entry, read_media_source_entry},
    {Section::media_source, convert_media_source},
    {Section::media_stapling, read_media_stapling},
    {Section::media_type, convert_media_type},
    {.without_table = join_media_destinations},
    {Section::memory_area, convert_memory_area},
    {Section::raster_capability, convert_raster},
    {Section::resolution, read_resolution},
    {Section::resolution_color_memory, read_resolution_color_memory},
    {Section::misc_info, convert_misc_info},
    {Section::misc_localizable_info, convert_meta},
    {Section::line_type_capabilities, convert_linetype},
    {.without_table = write_capability_states},
};

} // namespace

std::span<const LoadStep> load_steps() {
    return steps;
}

const LoadStep& load_step_of(Section section) {
    return *std::find_if(std::begin(steps), std::end(steps), [section](const LoadStep& step) {
        return step.convert != nullptr && step.section == section;
    });
}

void run_step(PdtLoad& load, const LoadStep& step) {
    if (step.convert == nullptr) return step.without_table(load);
    Rows rows(load, step.section);
    step.convert(load, rows);
}

} // namespace pm
