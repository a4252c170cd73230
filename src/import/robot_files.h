// The kinds of target file, and the readers of robot programs.
#pragma once

#include <span>

#include "core/arrays.h"

// An entry of `ComboOCS_Data`, in the order of the list.
struct InputKind {
    const char* Entry;
    Flag* IsKind;    // the flag that says that this kind is chosen; at most one of all is true
    void (*Read)();  // reads the target file behind Einlesen_Neu; null = nothing more to read
};
std::span<const InputKind> InputKinds();

// The entry that is chosen; the first one when none is.
const InputKind& ChosenKind();

// Each reads Run.PathReader and fills the target set OCS_* and Job.RobotABC.
void EinlesenKUKAdatDatei();
void EinlesenABB_MODX();
void EinlesenFanucDatei();
void EinlesenXYZABC();
void EinlesenABB();
