#pragma once
// The records that hold the state of a session. Plain data; who writes a field is said beside it.
// "main" means the main thread, "parser" the thread that handles the agent's lines.

#include <gtk/gtk.h>

#include <atomic>
#include <ctime>

struct ChatWindow;
struct MainWindow;

/// A panel as its toolbar button sees it. Main thread, but for the participants mailbox.
struct Expander {
    GtkWidget *button;      ///< toolbar button
    GtkWidget *mainWindow;  ///< the main window
    GtkWidget *contentArea; ///< the whole panel: header and content
    GtkWidget *textBar;     ///< notice inside the panel
    GtkWidget *seperator;   ///< line under the panel
    char *Data;             ///< mailbox: participant's name, owned; under `MainWindow.mutex`
    char *identifier;       ///< mailbox: participant's ID, owned; under `MainWindow.mutex`
    bool blockButton;       ///< mailbox: flag of the last participant line; under `MainWindow.mutex`
    int buttonState;        ///< 1 shown, 2 hidden
};

/// A panel's header row. Main thread.
struct CustomExpander {
    GtkWidget *expanderContent; ///< shown or hidden by a click on the header
    GtkWidget *Rightimage;      ///< image of the right-hand button, if there is one
    GtkWidget *rightButton;     ///< right-hand button, if there is one
    GtkWidget *arrowButton;     ///< never set
    GtkWidget *arrowImage;      ///< arrow at the left of the header
    bool isVisible;             ///< the content is open
};

/// The notice above the window's content, or inside a dialog. Lives as long as the process or its dialog.
struct InfoBar {
    GMutex textMutex;        ///< guards `infoBarText`; zero-initialised is ready
    char *infoBarText;       ///< text of the next notice, owned; any thread, under `textMutex`
    GtkWidget *infoBarLabel; ///< main
    GtkWidget *infoBar;      ///< main
    GtkWidget *mainWindow;   ///< window that is resized when the bar goes; main
    GQueue hideTimers;       ///< ids of the timers that are to hide the bar, oldest first; main; zero is empty
};

/// The annotation panel and the program that draws on the screen.
struct Annotation {
    GtkWidget *button;            ///< toolbar button
    GtkWidget *mainWindow;        ///< resized after a toggle
    GtkWidget *expander;          ///< never set
    GtkWidget *contentArea;       ///< the panel
    std::atomic<int> buttonState; ///< see annotationPanel.h; main and the starter thread
    char *logPath;                ///< log folder handed to the program; owned, constant after start-up
    char *pipePath;               ///< pipe to the program; owned, constant after start-up
    char *pipeOutPath;            ///< pipe from the program; owned, constant after start-up
    char *AnnotationWindow;       ///< path of the program; owned, constant after start-up
    GMutex runMutex;              ///< keeps start and clean-up apart; zero-initialised is ready
    std::atomic<guint> run;       ///< number of the last start, from 1; written under `runMutex`
    GThread *start;               ///< "AnnotationStarter" of the last start; under `runMutex`
    GThread *PipeReader;          ///< "AnnotationReader" of the last start, null after the clean-up; under `runMutex`
    GtkWidget *brush, *rectangle, *circle, *highlighter, *line, *eraser, *eraseAll; ///< tool buttons
    GtkWidget *colorButton;                                                         ///< never made
    char *brushPath, *rectangePath, *circlePath, *highlighterPath, *linePath, *eraserPath,
        *eraseAllPath; ///< icon files, owned
    GtkWidget *brushImage, *rectangeImage, *circleImage, *highlighterImage, *lineImage, *eraserImage,
        *eraseAllImage; ///< the tools' images
};

/// A technician's question about one feature; owned by its dialog until it is answered.
struct UserConcent {
    MainWindow *mainwindow; ///< borrowed
    char *message;          ///< base64 text of the question, owned
    char *clientid;         ///< asking client, echoed in the answer, owned
    char *feature;          ///< feature name and registry key, echoed in the answer, owned
    bool option;            ///< "Remember this option"
};

/// Called when the clickable word of the conversation is clicked, with the session's URL.
using ClickableCallback = void (*)(const char *url, ChatWindow *chatwindow);

/// The one clickable span of the conversation, in character offsets. Main thread.
struct ClickableRange {
    gint32 start;
    gint32 end;           ///< inclusive for clicks
    ClickableCallback cb; ///< null: no span is live
    gpointer user_data;   ///< never set
};

/// The chat panel's state.
struct ChatWindow {
    GtkWidget *chatview;     ///< conversation view; main
    GtkWidget *expander;     ///< never set
    GtkWidget *chat_area;    ///< the panel, opened by the first message; main
    GMutex mutex;            ///< guards the fields marked "locked"; zero-initialised is ready
    char *message;           ///< last received text, owned, may be null; locked
    char *charSender;        ///< author of the last message in either direction, owned; locked
    char *shownSender;       ///< author of the last message that the view was given, owned; main
    GString *chatData;       ///< the conversation as plain text, owned, null until the first entry; locked
    GQueue received;         ///< what came and is not rendered yet, `ReceivedMessage`s, owned; zeroed is ready; locked
    bool isUpdateScheduled;  ///< `UpdateChat` will run for what is in `received`; locked
    bool isButtonScheduled;  ///< the save button is about to be made usable; locked
    bool isSavingTranscript; ///< the question for the transcript's folder is open; main
    guint scrollSource;      ///< scrolls once more when the conversation is laid out; main
    const char *sessionType; ///< borrowed from the command line; constant
    char *settingsJsonPath;  ///< owned, may be null; constant
    char *sessionKey;        ///< owned, may be null; locked (written by the parser, read when a transcript is saved)
    bool isdifferentsender;  ///< the last received message starts a new block; locked
    bool isChatTranscriptEnabled;   ///< never set
    CustomExpander *chatExpander;   ///< borrowed
    Expander *chat;                 ///< borrowed
    struct tm previousTimeStamp;    ///< the customer's previous message; main
    int AgentMessage;               ///< messages sent since the last received one; locked
    InfoBar *infobar;               ///< borrowed
    ClickableRange *clickableRange; ///< owned
    char *ArSessionUrl;             ///< last invitation's address, owned; locked
    bool isARSessionInitiated;      ///< the AR window is open; main
};

/// The one session and window record. Fields without a word are written by start-up and read only by the main thread.
struct MainWindow {
    char *clip_Board_Text; ///< owned; main
    char *clip_agent_text; ///< owned; main
    char *clip_Text;       ///< owned; main
    Expander *participants;
    Expander *chat;
    Expander *fileTransfer;
    Annotation *annotation;
    InfoBar *infoBarStruct;
    GtkWidget *startSharingImage, *stopSharingImage; ///< each holds a reference; see `replace_widget`
    GtkWidget *startStopSharingButton;
    GtkWidget *statusLabel, *statusIcon;
    GtkWidget *window; ///< a reference is held for the life of the process
    GtkWidget *settingsButton;
    GtkWidget *sendFile;
    GtkWidget *onDemandScreenSharingImage;
    GtkWidget *participantsButtonImage, *chatButtonImage, *annotationButtonImage, *fileTransferButtonImage,
        *settingsButtonImage, *closeButtonImage;
    char *imageOnline, *imageOffline, *imageStartButton, *closeButtonImagePath, *imageStopButton,
        *participantsCursorImage, *participantsButtonImagePath, *chatButtonImagePath, *annotationButtonImagePath,
        *fileTransferButtonImagePath, *settingsButtonImagePath, *logoImagePath, *chatTranscriptImagePath,
        *imageRecording; ///< image files, owned
    char *tempFT;        ///< argument of the pending prompt, owned; main, under `mutex`
    char *Techname;      ///< technician's name, owned; parser writes it once under `mutex`, read under it
    char *logPath;       ///< owned; not used
    const char *demoSession, *urs, *rolechange, *email, *sysVersion, *homeDir,
        *productName;                ///< options, borrowed from `argv` or constants
    int StartButtonState;            ///< 0 before the first report, 1 sharing, 2 paused; main
    bool sharingButtonHadFocus;      ///< when it was made insensitive; main
    int noParticipants;              ///< technicians present; main
    std::atomic<bool> isConnected;   ///< a status or prompt line has come; parser
    std::atomic<bool> dialogChecker; ///< a control dialog is pending; parser and main
    std::atomic<bool> isClipBoardAllowed, isAnnotationAllowed, isSwapScreenAllowed, isChatAllowed,
        isFileTransferAllowed; ///< permissions of the session; parser
    bool allowClipboardAlways; ///< main
    GMutex mutex;       ///< guards `active_dialogs`, the participants mailbox, and what the parser leaves for dialogs
    GMutex PingUiMutex; ///< guards `isAlive`
    bool isAlive;       ///< set by "PING UI", cleared by each liveness check
    GList *active_dialogs; ///< kinds of open dialogs behind the entry "test"; under `mutex`
    CustomExpander *chatExpander, *participantsExpander, *fileTransferExpander, *annotationExpander;
    char *settingsJsonPath;           ///< owned, may be null; nothing reads the file
    char *demo_tech_access;           ///< participant who asks for control, owned; main, under `mutex`
    GtkWidget *onDemandScreenSharing; ///< never placed in the window; a reference is held
    GtkClipboard *clipboard;          ///< borrowed
    const char *productWindowTitle;   ///< constant
    int ClipPermissionCount;          ///< main
};

/// What the dispatcher works on; the thread takes a copy of it as it starts.
struct ThreadData {
    MainWindow *mainwindow;
    ChatWindow *chatwindow;
    GtkClipboard *clipboard;
};
