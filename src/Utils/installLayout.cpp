// The command line and the table of locations that follow from the session type. Paths are patterns until they are
// asked for: "~" stands for the home directory as given, "#" for the real user id.

#include "src/Utils/installLayout.h"

#include "Logger/logger.h"

#include <unistd.h>

#include <cstring>

const char *const cloudLogoPath = "/usr/local/ostrel/fleet_agent/images/FC_icon.svg";

namespace
{

constexpr char logFileName[] = "ui.log";
constexpr int maxLogMegabytes = 2;
constexpr int maxRotatedLogs = 7;

constexpr char userResources[] = "~/.brindle/Brindle/Resource";
constexpr char userRecording[] = "~/.brindle/Brindle/Resource/record.gif";
constexpr char userSettings[] = "~/.brindle/Brindle/bin/Settings.json";
// The recording image of a root installation is looked for below the home directory, on purpose.
constexpr char rootRecording[] = "~//usr/local/Brindle/Resource/record.gif";
constexpr char reachRecording[] = "~//usr/local/OstrelReach/Resource/record.gif";

// clang-format off
// In the order in which a session is matched; the two rows of "ras" follow `rasSystemLayout`.
constexpr InstallLayout layouts[] = {
    {"normal", "~/.brindle/Brindle/Logs", "~/.brindle/temp", userResources, userRecording, userSettings,
     "User Path Set", "Brindle"},
    {"ras", "~/.brindle/Brindle/Logs", "~/.brindle/temp", userResources, userRecording, userSettings,
     "User Path Set", nullptr},
    {"UrsUserSession", "/var/log/Brindle/#/Logs", "/usr/local/Brindle/temp", "/usr/local/Brindle/Resource",
     rootRecording, nullptr, nullptr, "Brindle"},
    {"oreach", "/var/log/OstrelReach", "/usr/local/OstrelReach/temp", "/usr/local/OstrelReach/Resource",
     reachRecording, nullptr, "root Path Set", "OstrelReach"},
    {nullptr, "/var/log/Brindle", "/usr/local/Brindle/temp", "/usr/local/Brindle/Resource", rootRecording, nullptr,
     "root Path Set", "Brindle"},
};

// "ras" without a home: logs and pipes move to the machine, the resources stay below the (empty) home.
constexpr InstallLayout rasSystemLayout = {
    "ras", "/usr/local/.brindle/Brindle/Logs", "/usr/local/.brindle/temp", userResources, userRecording, userSettings,
    "User Path Set", nullptr};
// clang-format on

struct Option {
    char letter;
    const char *MainWindow::*field;
};
constexpr Option options[] = {
    {'s', &MainWindow::email},       {'r', &MainWindow::rolechange}, {'v', &MainWindow::sysVersion},
    {'t', &MainWindow::demoSession}, {'u', &MainWindow::urs},        {'p', &MainWindow::homeDir},
    {'n', &MainWindow::productName},
};

struct Product {
    const char *code;
    const char *windowTitle;
};
constexpr Product cloudProducts[] = {
    {"FLEET_CLOUD", "Ostrel Fleet Console"},
    {"REACH_CLOUD", "Ostrel Reach  "}, // the trailing blanks belong to the title
};
constexpr char defaultWindowTitle[] = "Brindle";

struct MainImage {
    const char *file;
    char *MainWindow::*field;
};
constexpr MainImage mainImages[] = {
    {"online.png", &MainWindow::imageOnline},
    {"offline.png", &MainWindow::imageOffline},
    {"play.png", &MainWindow::imageStartButton},
    {"pause.png", &MainWindow::imageStopButton},
    {"cursor.png", &MainWindow::participantsCursorImage},
    {"participants.png", &MainWindow::participantsButtonImagePath},
    {"chat-black.png", &MainWindow::chatButtonImagePath},
    {"annotate-black.png", &MainWindow::annotationButtonImagePath},
    {"files-black.png", &MainWindow::fileTransferButtonImagePath},
    {"settings.png", &MainWindow::settingsButtonImagePath},
    {"logo.png", &MainWindow::logoImagePath},
    {"close.png", &MainWindow::closeButtonImagePath},
    {"download.png", &MainWindow::chatTranscriptImagePath},
};

struct ToolImage {
    const char *file;
    char *Annotation::*field;
};
constexpr ToolImage toolImages[] = {
    {"pen.png", &Annotation::brushPath},        {"rectangle.png", &Annotation::rectangePath},
    {"ellipse.png", &Annotation::circlePath},   {"eraser.png", &Annotation::eraserPath},
    {"delete2.png", &Annotation::eraseAllPath}, {"line.png", &Annotation::linePath},
};

bool isEmpty(const char *text)
{
    return !text || !*text;
}

const Product *findCloudProduct(const char *code)
{
    for (const Product &product : cloudProducts)
        if (g_strcmp0(product.code, code) == 0)
            return &product;
    return nullptr;
}

void storeOption(MainWindow *mainWindow, int letter, const char *value)
{
    for (const Option &option : options)
        if (option.letter == letter)
            mainWindow->*option.field = value;
}

void fillImagePaths(MainWindow *mainWindow, const char *resources)
{
    for (const MainImage &image : mainImages)
        mainWindow->*image.field = g_strdup_printf("%s/%s", resources, image.file);
    for (const ToolImage &image : toolImages)
        mainWindow->annotation->*image.field = g_strdup_printf("%s/%s", resources, image.file);
}

} // namespace

const InstallLayout &findInstallLayout(const char *sessionType, const char *homeDir)
{
    const char *const type = isEmpty(sessionType) ? "normal" : sessionType;
    if (strcmp(type, "ras") == 0 && isEmpty(homeDir))
        return rasSystemLayout;
    for (const InstallLayout &layout : layouts)
        if (!layout.sessionType || strcmp(layout.sessionType, type) == 0)
            return layout;
    return layouts[G_N_ELEMENTS(layouts) - 1];
}

OwnedText expandLayoutPath(const char *pattern, const char *homeDir)
{
    GString *const path = g_string_new(nullptr);
    for (const char *c = pattern; *c; c++) {
        if (*c == '~')
            g_string_append(path, homeDir ? homeDir : "");
        else if (*c == '#')
            g_string_append_printf(path, "%u", getuid());
        else
            g_string_append_c(path, *c);
    }
    return OwnedText(g_string_free(path, FALSE));
}

void argumentParser(int argc, char **argv, MainWindow *mainWindow)
{
    UI_ENTER();
    // "-" in front: arguments that are no options are passed over one by one, whatever the environment says, and
    // argv keeps its order for GTK.
    optind = 0;
    opterr = 0;
    int letter;
    while ((letter = getopt(argc, argv, "-s:r:v:t:u:p:n:")) != -1)
        storeOption(mainWindow, letter, optarg);
    const Product *const product = findCloudProduct(mainWindow->productName);
    mainWindow->productWindowTitle = product ? product->windowTitle : defaultWindowTitle;
}

bool isCloudProduct(const MainWindow *mainWindow)
{
    return findCloudProduct(mainWindow->productName) != nullptr;
}

void set_log_path(const char *sessionType, const MainWindow *mainWindow)
{
    const InstallLayout &layout = findInstallLayout(sessionType, mainWindow->homeDir);
    const OwnedText directory = expandLayoutPath(layout.logDirectory, mainWindow->homeDir);
    log_init(directory.get(), logFileName, maxLogMegabytes, maxRotatedLogs);
    UI_ENTER();
}

void setResourcePath(char **cssPathOut, char **localePathOut, MainWindow *mainWindow)
{
    UI_ENTER();
    const char *const home = mainWindow->homeDir;
    const InstallLayout &layout = findInstallLayout(mainWindow->urs, home);
    if (layout.pathSetLine)
        UI_INFO("%s", layout.pathSetLine);
    mainWindow->annotation = new Annotation();
    const OwnedText resources = expandLayoutPath(layout.resourceDirectory, home);
    fillImagePaths(mainWindow, resources.get());
    mainWindow->imageRecording = expandLayoutPath(layout.recordingImage, home).release();
    if (layout.settingsFile)
        mainWindow->settingsJsonPath = expandLayoutPath(layout.settingsFile, home).release();
    if (isCloudProduct(mainWindow))
        replace_text(mainWindow->logoImagePath, cloudLogoPath);
    *cssPathOut = g_strdup_printf("%s/brindle-gtk.css", resources.get());
    *localePathOut = g_strdup_printf("%s/locale", resources.get());
}
