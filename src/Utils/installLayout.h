#pragma once
// Where things are: the command line and the locations that follow from the session type.

#include "src/main.h"
#include "src/support.h"

/// One kind of installation. In the patterns "~" at the start stands for the home directory as given on the command
/// line and "#" for the real user id.
struct InstallLayout {
    const char *sessionType;       ///< value of -u, or null for any other
    const char *logDirectory;      ///< pattern
    const char *pipeDirectory;     ///< pattern
    const char *resourceDirectory; ///< pattern
    const char *recordingImage;    ///< pattern
    const char *settingsFile;      ///< pattern, or null: none
    const char *pathSetLine;       ///< what the log says once the paths are set, or null
    const char *agentProduct;      ///< product word of the agent channel, or null: see `set_pipe_path`
};

/// The layout of a session; never fails. Thread: any.
/// @param sessionType  value of -u; null and "" count as "normal"
/// @param homeDir      value of -p; may be null
const InstallLayout &findInstallLayout(const char *sessionType, const char *homeDir);

/// A path from one of the layout's patterns. Thread: any.
OwnedText expandLayoutPath(const char *pattern, const char *homeDir);

/// Reads "-s -r -v -t -u -p -n", each with a value, into the record and sets `productWindowTitle`.
/// Values are borrowed from `argv`. What it doesn't know it ignores. Thread: main.
void argumentParser(int argc, char **argv, MainWindow *mainWindow);

/// True for the two product codes of cloud installations, which have their own logo and desktop entry place.
bool isCloudProduct(const MainWindow *mainWindow);
/// The logo of cloud installations.
extern const char *const cloudLogoPath;

/// Chooses the log directory of the session and opens the log there. Thread: main.
void set_log_path(const char *sessionType, const MainWindow *mainWindow);

/// Makes the `annotation` record and fills every image path and `settingsJsonPath`.
/// @param cssPathOut     receives the style sheet's path; the caller frees it
/// @param localePathOut  receives the directory of the languages; the caller frees it
/// Thread: main.
void setResourcePath(char **cssPathOut, char **localePathOut, MainWindow *mainWindow);
