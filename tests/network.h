// A model read from a text.

#pragma once

#include "ntamodel.h"
#include "support.h"

inline void read(NetTimedModel& model, const std::string& text) {
    const Scratch dir;
    dir.write("net.in", text);
    testing::internal::CaptureStdout();
    model.readNetwork(dir.path / "net");
    testing::internal::GetCapturedStdout();
    model.compNrOfBits(1);
}
