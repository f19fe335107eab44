// Puts a category word in front of a text and sends the line.

#include "src/encoder.h"

#include "Logger/logger.h"
#include "src/Utils/pipeTransport.h"

static int sendLine(const char *category, const char *text, const char *pipePath)
{
    g_autofree char *line = g_strdup_printf("%s %s\n", category, text);
    pipewriter(pipePath, line);
    return 0;
}

int encodeButtonClickMessage(const char *text, const char *pipePath)
{
    UI_ENTER();
    return sendLine("buttonClicked", text, pipePath);
}

int encodeDialogeResponseMessage(const char *text, const char *pipePath)
{
    UI_ENTER();
    return sendLine("dialogResponse", text, pipePath);
}

int encodeMonitorMessage(const char *text, const char *pipePath)
{
    UI_ENTER();
    return sendLine("monitorData", text, pipePath);
}
