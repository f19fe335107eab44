#pragma once
// Front door of the shared window services.

#include "src/Utils/dialogPlacement.h"
#include "src/Utils/installLayout.h"
#include "src/Utils/mainWindowBuilder.h"
#include "src/Utils/panels.h"
#include "src/Utils/pipeTransport.h"
