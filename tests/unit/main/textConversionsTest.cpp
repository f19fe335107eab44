// Which translations may stand for a text that is a format.

#include "src/textConversions.h"

#include <gtest/gtest.h>

TEST(Translation, MustKeepTheConversionsOfItsKey)
{
    struct Case {
        const char *key, *translation;
        bool usable;
    };
    const Case cases[] = {
        {"%s asks", "es fragt %s", true},
        {"%s asks", "jemand fragt", false},
        {"%s asks", "%d fragt", false},
        {"%s asks", "%n fragt", false},
        {"%s asks", "%s und %s fragen", false},
        {"%s sends %d files", "%s sendet %d Dateien", true},
        {"%s sends %d files", "%d Dateien von %s", false},
        {"%s asks", "%5s fragt", false},
        {"%s asks", "%s fragt %", false},
        {"%s asks", "%", false},
        {"%s asks", "", false},
        {"Accept", "Annehmen", true},
        {"Accept", "100 % annehmen", true},
        {"Accept", "%s%n", true}, // never a format: its key has no conversion
        {"", "", true},
        {"50%% of %s", "%s zu 50%%", false},
        {"50%% of %s", "50%% von %s", true},
    };
    for (const Case &each : cases)
        EXPECT_EQ(sameConversions(each.key, each.translation), each.usable) << each.key << " / " << each.translation;
}
