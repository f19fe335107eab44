#pragma once
// Front door of the chat panel.

#include "src/Chat/chatFlow.h"
#include "src/Chat/chatTranscript.h"
#include "src/Chat/chatView.h"
