// The annotation panel with a real child program over real FIFOs. The program is a script that writes down how it was
// started and what it was told.

#include "src/Annotation/annotation.h"
#include "src/IdleThread/infoBar.h"
#include "src/main.h"
#include "src/support.h"
#include "tests/support/testSession.h"
#include "tests/support/widgetSearch.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <filesystem>

namespace
{

using ::testing::ElementsAre;
namespace fs = std::filesystem;

constexpr char programPath[] = ".brindle/Brindle/bin/Annotation";
// Reads its commands as an overlay does, until "Exit".
constexpr char obedientProgram[] = R"sh(#!/bin/bash
cd "$(dirname "$0")"
printf '%s\n' "$0" "$@" > arguments
grep -E 'SigBlk|SigIgn' /proc/self/status > signals
while :; do
  command=$(cat "$8")
  printf '%s\n' "$command" >> commands
  [ "$command" = Exit ] && exit 0
  [ "$command" = 7 ] && printf normal > "$6"
done
)sh";

class AnnotationPanel : public WindowSession
{
protected:
    void SetUp() override
    {
        WindowSession::SetUp();
        annotation = mainWindow->annotation;
    }

    void TearDown() override
    {
        if (isAnnotationAlive)
            AnnotationPipeWriter(annotation->pipePath, "Exit");
        EXPECT_TRUE(waitUntil([] { return !isAnnotationAlive; }));
        if (annotation->start)
            g_thread_join(annotation->start);
        drainMainLoop();
        WindowSession::TearDown();
    }

    /// Installs a program, without the right to run it.
    void install(const std::string &script) { home.write(programPath, script); }
    std::string beside(const std::string &name) const { return home.read(".brindle/Brindle/bin/" + name); }

    /// The toolbar button's handler, which start-up connects.
    void toggle() { on_annotation_clicked(annotation->button, mainWindow); }
    void click(GtkWidget *tool) { gtk_button_clicked(GTK_BUTTON(tool)); }

    testing::AssertionResult awaitCommands(const std::string &commands)
    {
        return waitUntil([&] { return beside("commands") == commands; }, [&] { return beside("commands"); });
    }

    bool isUsable(GtkWidget *tool) const { return gtk_widget_get_sensitive(tool) != 0; }

    Annotation *annotation = nullptr;
};

} // namespace

TEST_F(AnnotationPanel, ProgramIsStartedWithItsPathsAndRights)
{
    install(obedientProgram);
    toggle();
    ASSERT_TRUE(waitUntil([&] { return beside("arguments").size() > 10 && beside("signals").size() > 10; }));
    const std::string base = home.path() + "/.brindle";
    EXPECT_EQ(beside("arguments"), base + "/Brindle/bin/Annotation\n-l\n" + base + "/Brindle/Logs\n-p\n" + base +
                                       "/temp/Status\n-o\n" + base + "/temp/AnnotationOut\n-i\n" + base +
                                       "/temp/AnnotationIn\n");
    struct stat status;
    ASSERT_EQ(stat(home.file(programPath).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700u);
    for (const char *const pipe : {annotation->pipePath, annotation->pipeOutPath}) {
        ASSERT_EQ(stat(pipe, &status), 0);
        EXPECT_TRUE(S_ISFIFO(status.st_mode));
    }
    // Neither the ignored signal nor a blocked one is inherited.
    EXPECT_EQ(beside("signals"), "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
}

TEST_F(AnnotationPanel, EveryToolSendsItsCommandAndIsGreyedOut)
{
    install(obedientProgram);
    toggle();
    std::string all;
    const struct {
        GtkWidget *tool;
        const char *command;
    } tools[] = {{annotation->brush, "2"},
                 {annotation->rectangle, "3"},
                 {annotation->circle, "4"},
                 {annotation->eraser, "6"},
                 {annotation->line, "8"}};
    for (const auto &row : tools) {
        click(row.tool);
        all += std::string(row.command) + "\n";
        ASSERT_TRUE(awaitCommands(all));
        EXPECT_TRUE(waitUntil([&] { return !isUsable(row.tool); }));
    }
    EXPECT_TRUE(isUsable(annotation->eraseAll));
    EXPECT_TRUE(logHas("annotationRectangle"));
}

TEST_F(AnnotationPanel, BackToNormalEnablesTheToolsAndHidesTheHint)
{
    install(obedientProgram);
    toggle();
    click(annotation->brush);
    EXPECT_TRUE(isShown(mainWindow->infoBarStruct->infoBar));
    EXPECT_EQ(shownText(mainWindow->infoBarStruct->infoBarLabel), "Click the right mouse button to switch to cursor.");
    ASSERT_TRUE(awaitCommands("2\n")); // two at once would be read as one
    ASSERT_TRUE(waitUntil([&] { return !isUsable(annotation->brush); }));
    click(annotation->eraseAll); // this program answers "normal"
    ASSERT_TRUE(waitUntil([&] { return isUsable(annotation->brush) && isUsable(annotation->eraseAll); }));
    EXPECT_TRUE(waitUntil([&] { return !isShown(mainWindow->infoBarStruct->infoBar); }));
    EXPECT_TRUE(awaitCommands("2\n7\n"));
}

TEST_F(AnnotationPanel, BackToNormalLeavesTheHighlighterAlone)
{
    annotation->highlighter = gtk_button_new();
    g_object_ref_sink(annotation->highlighter);
    gtk_widget_set_sensitive(annotation->highlighter, false);
    gtk_widget_set_sensitive(annotation->line, false);
    EXPECT_FALSE(MakeButtonSensitive(mainWindow));
    EXPECT_TRUE(isUsable(annotation->line));
    EXPECT_FALSE(isUsable(annotation->highlighter));
    g_object_unref(annotation->highlighter);
}

TEST_F(AnnotationPanel, HighlighterWritesNothingButShowsTheHint)
{
    GtkWidget *const button = gtk_button_new();
    g_object_ref_sink(button);
    gtk_widget_set_name(button, "annotationHighlighterWide");
    HandleButtonClick(button, mainWindow);
    drainMainLoop();
    EXPECT_TRUE(isUsable(button));
    EXPECT_TRUE(isShown(mainWindow->infoBarStruct->infoBar));
    EXPECT_FALSE(logHas("error writing to pipe"));
    g_object_unref(button);
}

TEST_F(AnnotationPanel, ToolNamedTextIsTheBrush)
{
    install(obedientProgram);
    toggle();
    GtkWidget *const button = gtk_button_new();
    g_object_ref_sink(button);
    gtk_widget_set_name(button, "TextTool");
    HandleButtonClick(button, mainWindow);
    EXPECT_TRUE(awaitCommands("2\n"));
    EXPECT_TRUE(waitUntil([&] { return !isUsable(annotation->brush); }));
    g_object_unref(button);
}

TEST_F(AnnotationPanel, PanelOpensAndCollapsesWhileTheProgramKeepsRunning)
{
    install(obedientProgram);
    EXPECT_EQ(annotation->buttonState, 2);
    toggle();
    EXPECT_EQ(annotation->buttonState, 1);
    EXPECT_TRUE(isShown(annotation->brush));
    EXPECT_TRUE(mainWindow->annotationExpander->isVisible);
    toggle();
    EXPECT_EQ(annotation->buttonState, 2);
    EXPECT_FALSE(isShown(annotation->contentArea));
    EXPECT_TRUE(mainWindow->annotationExpander->isVisible);
    EXPECT_TRUE(isAnnotationAlive);
    toggle();
    EXPECT_TRUE(isShown(annotation->brush));
    EXPECT_EQ(annotation->run, 1u);
    for (const char *const line : {"annotation is allowed", "Expaning annotation", "minimizing annotation",
                                   "annotation window is aleardy running"})
        EXPECT_TRUE(logHas(line)) << line;
}

TEST_F(AnnotationPanel, ForbiddenAnnotationDoesNothing)
{
    mainWindow->isAnnotationAllowed = false;
    toggle();
    EXPECT_FALSE(isAnnotationAlive);
    EXPECT_EQ(annotation->buttonState, 2);
    EXPECT_FALSE(isShown(annotation->contentArea));
    EXPECT_FALSE(logHas("annotation is allowed"));
}

TEST_F(AnnotationPanel, EndOfTheProgramTellsTheAgentAndClosesThePanel)
{
    install("#!/bin/bash\nexit 3\n");
    toggle();
    EXPECT_THAT(sentLines(1), ElementsAre("monitorData AnnotationClose"));
    ASSERT_TRUE(waitUntil([&] { return !isAnnotationAlive && !isShown(annotation->contentArea); }));
    EXPECT_EQ(annotation->buttonState, 2);
    EXPECT_FALSE(fs::exists(annotation->pipePath));
    EXPECT_FALSE(fs::exists(annotation->pipeOutPath));
    EXPECT_TRUE(logHas("annotation window has been closed closing dialog"));
    EXPECT_TRUE(logHas("cleaning up annotation"));
}

TEST_F(AnnotationPanel, ProgramThatCannotBeStartedIsCleanedUpAfter)
{
    toggle(); // nothing is installed
    EXPECT_THAT(sentLines(1), ElementsAre("monitorData AnnotationClose"));
    ASSERT_TRUE(waitUntil([&] { return !isAnnotationAlive && annotation->buttonState == 2; }));
    EXPECT_TRUE(waitUntil([&] { return !isShown(annotation->contentArea); }));
}

TEST_F(AnnotationPanel, KilledProgramCanBeStartedAgain)
{
    install("#!/bin/bash\nkill -9 $$\n");
    toggle();
    ASSERT_TRUE(waitUntil([&] { return !isAnnotationAlive && !isShown(annotation->contentArea); }));
    install(obedientProgram);
    toggle();
    EXPECT_EQ(annotation->run, 2u);
    click(annotation->line);
    EXPECT_TRUE(awaitCommands("8\n"));
    EXPECT_TRUE(isShown(annotation->contentArea));
}

TEST_F(AnnotationPanel, CollapseOfAnEarlierRunLeavesTheNewPanelOpen)
{
    install(obedientProgram);
    toggle();
    AnnotationPipeWriter(annotation->pipePath, "Exit");
    g_thread_join(g_thread_ref(annotation->start));
    ASSERT_FALSE(isAnnotationAlive); // its callback waits in the main loop
    toggle();
    drainMainLoop();
    EXPECT_EQ(annotation->run, 2u);
    EXPECT_EQ(annotation->buttonState, 1);
    EXPECT_TRUE(isShown(annotation->contentArea));
}

TEST_F(AnnotationPanel, ReportPipeThatIsAPlainFileFreesTheWayForAnotherStart)
{
    home.write(".brindle/temp/AnnotationOut", "");
    install("#!/bin/bash\nread -r < \"$8\"\n");
    toggle();
    ASSERT_TRUE(waitUntil([&] { return !isAnnotationAlive; }));
    EXPECT_TRUE(logHas("error reading pipe Invalid argument "));
    EXPECT_TRUE(fs::is_fifo(annotation->pipePath));
    AnnotationPipeWriter(annotation->pipePath, "\n");
}

TEST_F(AnnotationPanel, ExistingPipesAreLeftAsTheyAre)
{
    makeFifo(annotation->pipePath);
    struct stat before, after;
    ASSERT_EQ(stat(annotation->pipePath, &before), 0);
    install(obedientProgram);
    toggle();
    ASSERT_EQ(stat(annotation->pipePath, &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(AnnotationPanel, EndOfTheProgramAfterTheWindowIsGoneIsHarmless)
{
    install(obedientProgram);
    toggle();
    click(annotation->brush);
    ASSERT_TRUE(awaitCommands("2\n"));
    gtk_widget_destroy(mainWindow->window);
    ASSERT_TRUE(sendText(annotation->pipeOutPath, "normal"));
    AnnotationPipeWriter(annotation->pipePath, "Exit");
    ASSERT_TRUE(waitUntil([] { return !isAnnotationAlive; }));
    drainMainLoop();
}
