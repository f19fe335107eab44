#pragma once
// Front door of the callbacks that change the window from the main loop. Each returns 0: it runs once.

#include "src/IdleThread/callInvitations.h"
#include "src/IdleThread/chatUpdate.h"
#include "src/IdleThread/infoBar.h"
#include "src/IdleThread/participants.h"
#include "src/IdleThread/statusRow.h"
#include "src/IdleThread/widgetCallbacks.h"
