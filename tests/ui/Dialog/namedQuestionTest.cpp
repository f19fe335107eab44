// What a question calls by name: the script that is to run, the participant who asks for control.

#include "tests/ui/Dialog/dialogSession.h"

#include <gmock/gmock.h>

using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace
{

class NamedQuestion : public DialogSession
{
};

} // namespace

TEST_F(NamedQuestion, NobodyAgreesToAControlThatNobodyAsksFor)
{
    for (const char *const words : {"command", "command \u2800", "command \u200B"}) {
        GtkWidget *const dialog = open(words);
        EXPECT_FALSE(gtk_widget_get_sensitive(findButton(dialog, "Yes"))) << words;
        answer(dialog, GTK_RESPONSE_REJECT);
    }
    EXPECT_TRUE(gtk_widget_get_sensitive(findButton(open("command A1"), "Yes")));
}

TEST_F(NamedQuestion, NoNameLooksLikeAnother)
{
    GtkWidget *dialog = open("launchScript photo\u202egpj.sh");
    EXPECT_THAT(textOf(dialog), HasSubstr("photo\ufffdgpj.sh"));
    answer(dialog, GTK_RESPONSE_REJECT);
    addParticipant("Ann\nand Tom\u202e", "A1");
    dialog = open("command A1");
    EXPECT_THAT(textOf(dialog), StartsWith("Ann\ufffdand Tom\ufffd has requested"));
}

TEST_F(NamedQuestion, ScriptNameIsNeitherFormatNorMarkup)
{
    GtkWidget *dialog = open("launchScript %s%n<b>\xff");
    EXPECT_THAT(textOf(dialog), HasSubstr("\"%s%n<b>\xEF\xBF\xBD\""));
    answer(dialog, GTK_RESPONSE_REJECT);
    dialog = open("launchScript");
    EXPECT_THAT(textOf(dialog), HasSubstr("\"(null)\""));
    EXPECT_TRUE(gtk_widget_get_sensitive(findButton(dialog, "Allow")));
}

TEST_F(NamedQuestion, ScriptWhoseNameShowsNothingCannotBeAgreedTo)
{
    for (const char *const name : {"", "\u200b", "\u3164\u2800", "\x01\u202e"}) {
        GtkWidget *const dialog = open(std::string("launchScript ") + name);
        EXPECT_FALSE(gtk_widget_get_sensitive(findButton(dialog, "Allow"))) << name;
        answer(dialog, GTK_RESPONSE_REJECT);
    }
    EXPECT_TRUE(gtk_widget_get_sensitive(findButton(open("launchScript \u200bx"), "Allow")));
}

TEST_F(NamedQuestion, ParticipantWhoseNameShowsNothingIsNamedByTheIdentifier)
{
    addParticipant("\u3164\u200b", "A1");
    addParticipant(" ", "\u2800");
    GtkWidget *dialog = open("command a1");
    EXPECT_TRUE(logHas("parse confromation text"));
    EXPECT_THAT(textOf(dialog), StartsWith("a1 has requested"));
    EXPECT_TRUE(gtk_widget_get_sensitive(findButton(dialog, "Yes")));
    answer(dialog, GTK_RESPONSE_REJECT);
    dialog = open("command \u2800");
    EXPECT_FALSE(gtk_widget_get_sensitive(findButton(dialog, "Yes")));
}
