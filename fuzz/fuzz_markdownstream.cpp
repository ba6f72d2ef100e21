// The streaming renderer on arbitrary replies cut into arbitrary pieces: at every checked
// point its blocks equal a whole render of the text so far, and a piece leaves alone every
// block that was final before it and still is after it, which is what the reply view
// relies on to redraw only the rows after those.

#include "fuzztarget.h"
#include "pieces.h"
#include "text.h"

#include "render/incrementalrenderer.h"
#include "render/markdownrenderer.h"

using zentrik::IncrementalRenderer;
using zentrik::MarkdownBlock;
using zentrik::MarkdownRenderer;

namespace {

QList<MarkdownBlock> renderWhole(QString text)
{
    // A trailing half of a surrogate pair waits for the rest.
    if (!text.isEmpty() && text.back().isHighSurrogate()) {
        text.chop(1);
    }
    return MarkdownRenderer::render(text);
}

} // namespace

ZENTRIK_FUZZ_TARGET(markdownstream)
{
    const QString text = zentrik::fuzz::textOf(data, size);
    zentrik::fuzz::Pieces cutter(data, size);

    IncrementalRenderer renderer;
    QList<MarkdownBlock> final;
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype length = std::min(cutter.nextLength(), text.size() - at);
        renderer.append(QStringView(text).sliced(at, length));
        at += length;
        FUZZ_CHECK(renderer.text() == text.first(at), "the renderer's text is not the pieces so far");
        FUZZ_CHECK(renderer.tailStart() >= 0 && renderer.tailStart() <= at, "the tail begins outside the text");
        const qsizetype stable = renderer.stableBlockCount();
        FUZZ_CHECK(stable >= 0 && stable <= renderer.blocks().size(), "more final blocks than blocks");
        const qsizetype kept = std::min(stable, final.size());
        FUZZ_CHECK(renderer.blocks().first(kept) == final.first(kept), "a piece changed a final block");
        final = renderer.blocks().first(stable);
        // A whole render after every piece would make long inputs quadratic; one piece in
        // eight is compared, and the end always is.
        if (cutter.next() % 8 == 0 || at == text.size()) {
            FUZZ_CHECK(renderer.blocks() == renderWhole(renderer.text()),
                "the streamed blocks differ from a whole render of the same text");
        }
    }

    // Setting the whole text at once gives the whole render too.
    renderer.setText(text);
    FUZZ_CHECK(renderer.blocks() == renderWhole(text), "setText() differs from a whole render");
    return 0;
}
