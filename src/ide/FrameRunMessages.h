#pragma once
// The frame messages of runs, evaluation and errors (see FM_RUNMACRO and its neighbours), and those
// that exchange objects and data with the host.
#include <windows.h>

namespace brannoc::ide {

class EditorFrame;

// Answers one of those messages into `result`; false for any other message.
bool RunControlMessage(EditorFrame& frame, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
// The messages that exchange objects and data with the host (FrameHostMessages.cpp).
bool HostDataMessage(EditorFrame& frame, UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);

} // namespace brannoc::ide
