// Whatever markup the question of a session may come with, up to the label that shows it.

#include "tests/fuzz/fuzzing.h"

#include "src/Dialog/dialogText.h"

#include <cstdlib>

namespace
{

GtkWidget *makeLabel()
{
    gtk_init(nullptr, nullptr);
    failOnWarnings();
    return GTK_WIDGET(g_object_ref_sink(gtk_label_new(nullptr)));
}

/// A question that is shown has something to read in it.
void showMarkup(GtkLabel *label, const char *markup)
{
    gtk_label_set_markup_with_mnemonic(label, markup);
    if (!hasVisibleText(gtk_label_get_text(label)))
        abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static GtkWidget *const label = makeLabel();
    g_autofree char *base64 = g_base64_encode(data, size);
    for (const std::string &field : {std::string(base64), textOf(data, size)}) {
        const OwnedText question = decodeQuestion(field.c_str());
        if (const JoinText text = readMarkup(question.get()); text.markup)
            showMarkup(GTK_LABEL(label), text.markup.get());
        bool wasCut = false;
        gtk_label_set_text(GTK_LABEL(label), cutToReadable(question.get(), &wasCut).get());
    }
    return 0;
}
