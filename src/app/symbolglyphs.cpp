#include "app/symbolglyphs.h"

#include "app/applogging.h"

#include <QHash>
#include <QSet>

#include <mutex>

namespace zentrik::SymbolGlyphs {

namespace {

// Material Icons code points, named after the Material icon in each comment.
const QHash<QString, char32_t> &table()
{
    static const QHash<QString, char32_t> glyphs = {
        // assistant cards and categories
        { QStringLiteral("megaphone"), 0xef49 }, // campaign
        { QStringLiteral("pencil"), 0xe3c9 }, // edit
        { QStringLiteral("lightbulb"), 0xe90f }, // lightbulb_outline
        { QStringLiteral("lightbulb.fill"), 0xe0f0 }, // lightbulb
        { QStringLiteral("person.fill.viewfinder"), 0xf106 }, // person_search
        { QStringLiteral("bolt"), 0xea0b }, // bolt
        { QStringLiteral("bolt.fill"), 0xe3e7 }, // flash_on
        { QStringLiteral("briefcase"), 0xeb3f }, // business_center
        { QStringLiteral("message.square"), 0xe0cb }, // chat_bubble_outline
        { QStringLiteral("message"), 0xe0c9 }, // message
        { QStringLiteral("text.quote"), 0xe244 }, // format_quote
        { QStringLiteral("chart.bar"), 0xe26b }, // bar_chart
        { QStringLiteral("chart.pie"), 0xe6c4 }, // pie_chart
        { QStringLiteral("doc.text"), 0xe873 }, // description
        { QStringLiteral("cart"), 0xe8cc }, // shopping_cart
        { QStringLiteral("dollarsign.circle"), 0xe263 }, // monetization_on
        { QStringLiteral("text.word.spacing"), 0xe262 }, // text_fields
        { QStringLiteral("hand.thumbsup"), 0xe8dc }, // thumb_up
        { QStringLiteral("envelope"), 0xe0be }, // email
        { QStringLiteral("target"), 0xe8e1 }, // track_changes
        { QStringLiteral("rectangle.3.offgrid"), 0xe871 }, // dashboard
        { QStringLiteral("bubble.left.and.bubble.right"), 0xe0bf }, // forum
        { QStringLiteral("headphones"), 0xf01f }, // headphones
        { QStringLiteral("laptopcomputer"), 0xe31e }, // laptop
        { QStringLiteral("ladybug"), 0xe868 }, // bug_report
        { QStringLiteral("square.stack.3d.up"), 0xe53b }, // layers
        { QStringLiteral("person.2"), 0xe7ef }, // group
        { QStringLiteral("person.2.fill"), 0xe7fb }, // people
        { QStringLiteral("list.bullet.clipboard"), 0xe85d }, // assignment
        { QStringLiteral("list.clipboard"), 0xe14f }, // content_paste
        // dashboard shortcuts and the sidebar
        { QStringLiteral("doc.text.magnifyingglass"), 0xe880 }, // find_in_page
        { QStringLiteral("mic.fill"), 0xe029 }, // mic
        { QStringLiteral("photo"), 0xe3f4 }, // image
        { QStringLiteral("house"), 0xe88a }, // home
        { QStringLiteral("gear"), 0xe8b8 }, // settings
        { QStringLiteral("moon.fill"), 0xe51c }, // dark_mode
        { QStringLiteral("sun.max.fill"), 0xe518 }, // light_mode
        { QStringLiteral("hammer"), 0xe869 }, // build
        { QStringLiteral("chevron.left"), 0xe5cb }, // chevron_left
        // settings
        { QStringLiteral("chevron.down"), 0xe5cf }, // expand_more
        { QStringLiteral("chevron.up"), 0xe5ce }, // expand_less
        { QStringLiteral("info.circle.fill"), 0xe88e }, // info
        { QStringLiteral("key.fill"), 0xe0da }, // vpn_key
        { QStringLiteral("eye"), 0xe8f4 }, // visibility
        { QStringLiteral("eye.slash"), 0xe8f5 }, // visibility_off
        { QStringLiteral("arrow.up.right.square"), 0xe89e }, // open_in_new
        { QStringLiteral("checkmark.circle.fill"), 0xe86c }, // check_circle
        { QStringLiteral("exclamationmark.triangle.fill"), 0xe002 }, // warning
        { QStringLiteral("lock.fill"), 0xe897 }, // lock
        // privacy dialog, replies and chats
        { QStringLiteral("exclamationmark.shield.fill"), 0xf014 }, // gpp_maybe
        { QStringLiteral("doc.on.doc"), 0xe14d }, // content_copy
        { QStringLiteral("checkmark"), 0xe5ca }, // check
        { QStringLiteral("brain.head.profile"), 0xea4a }, // psychology
        { QStringLiteral("person.circle.fill"), 0xe853 }, // account_circle
        { QStringLiteral("paperplane.fill"), 0xe163 }, // send
        { QStringLiteral("stop.fill"), 0xe047 }, // stop
        { QStringLiteral("xmark"), 0xe5cd }, // close
        // images, files and recordings
        { QStringLiteral("arrow.down.circle"), 0xf181 }, // arrow_circle_down
        { QStringLiteral("square.and.arrow.down"), 0xe171 }, // save_alt
        { QStringLiteral("trash"), 0xe872 }, // delete
        { QStringLiteral("arrow.clockwise"), 0xe5d5 }, // refresh
        { QStringLiteral("record.circle"), 0xe061 }, // fiber_manual_record
        { QStringLiteral("stop.circle"), 0xef71 }, // stop_circle
        { QStringLiteral("play.fill"), 0xe037 }, // play_arrow
        { QStringLiteral("pause.fill"), 0xe034 }, // pause
        { QStringLiteral("waveform"), 0xe1b8 }, // graphic_eq
        { QStringLiteral("clock.arrow.circlepath"), 0xe889 }, // history
        { QStringLiteral("magnifyingglass"), 0xe8b6 }, // search
        { QStringLiteral("plus.bubble"), 0xe266 }, // add_comment
        { QStringLiteral("square.and.arrow.up"), 0xe2c6 }, // file_upload
        { QStringLiteral("arrow.uturn.backward"), 0xe166 }, // undo
    };
    return glyphs;
}

void warnUnknown(const QString &symbol)
{
    static std::mutex lock;
    static QSet<QString> reported;
    const std::lock_guard guard(lock);
    if (!reported.contains(symbol)) {
        reported.insert(symbol);
        qCWarning(lcApp) << "No icon for the symbol" << symbol;
    }
}

} // namespace

char32_t codepoint(const QString &symbol)
{
    return table().value(symbol, 0);
}

QString glyph(const QString &symbol)
{
    char32_t code = codepoint(symbol);
    if (code == 0) {
        if (!symbol.isEmpty()) {
            warnUnknown(symbol);
        }
        code = fallbackCodepoint;
    }
    return QString::fromUcs4(&code, 1);
}

QStringList symbols()
{
    return table().keys();
}

} // namespace zentrik::SymbolGlyphs
