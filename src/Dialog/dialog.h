#pragma once
// Front door of the dialogs.

#include "src/Dialog/activeuser.h"
#include "src/Dialog/callDialog.h"
#include "src/Dialog/clipboardDialog.h"
#include "src/Dialog/confirmationDialogs.h"
#include "src/Dialog/dialogShape.h"
#include "src/Dialog/fileTransferDialogs.h"
#include "src/Dialog/swapDialog.h"
