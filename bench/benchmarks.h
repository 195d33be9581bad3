#pragma once

#include <string>

/// Path of a clip of clips.table, named without its suffix where that is .mp4.
std::string clipPath(const std::string& name);

/// Each names one file's measures to the benchmark library; before these are run.
void registerDecoding();
void registerInteraction();
void registerIdling();
void registerHeldKey();
void registerComparison();
void registerPlaying();
void registerGrowth();
