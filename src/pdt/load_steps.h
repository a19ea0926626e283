#pragma once

#include "pdt/rows.h"
#include <span>

namespace pm {

// A step of a load: a table with its converter, or something that needs no table. A converter reads the rows
// and writes below the base, or fills a list that later steps look names up in. None rolls back.
struct LoadStep {
    Section section = {};
    void (*convert)(PdtLoad& load, Rows& rows) = nullptr;
    void (*without_table)(PdtLoad& load) = nullptr;
};

// In their order: each finds in the lists what earlier ones left there.
std::span<const LoadStep> load_steps();
// The step of a section that has one.
const LoadStep& load_step_of(Section section);

void run_step(PdtLoad& load, const LoadStep& step);

} // namespace pm
