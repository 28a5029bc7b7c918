#include "show/image/findingwords.h"

#include "show/base/hint.h"
#include "show/image/showcheck.h"
#include "show/model/showtime.h"

#include <QtGlobal>

namespace glow {

QString sentenceOf(const Finding &finding)
{
    switch (finding.kind) {
    case Finding::LeadIn:
        return hint(QT_TRANSLATE_NOOP("Hints", "第一個圖樣前的 %1 毫秒空白會被略過")).arg(finding.amount);
    case Finding::BeforeStart:
        return hint(QT_TRANSLATE_NOOP("Hints", "第一個圖樣比起點標記早 %1 毫秒開始")).arg(finding.amount);
    case Finding::Overlap:
        return hint(QT_TRANSLATE_NOOP("Hints", "兩個圖樣重疊 %1 毫秒：之後的都會延後")).arg(finding.amount);
    case Finding::Gap:
        return hint(QT_TRANSLATE_NOOP("Hints", "%1 毫秒的空白會被略過：之後的都會提前")).arg(finding.amount);
    case Finding::ShortColour:
        return hint(QT_TRANSLATE_NOOP("Hints", "短於 %1 毫秒的單色不會顯示")).arg(finding.limit);
    case Finding::NoColumns:
        return hint(QT_TRANSLATE_NOOP("Hints", "圖樣太短，連一行都分不到，不會顯示"));
    case Finding::Entries:
        return hint(QT_TRANSLATE_NOOP("Hints", "共 %1 段，道具最多只能數到 %2 段"))
            .arg(finding.amount)
            .arg(finding.limit);
    case Finding::Header:
        return hint(QT_TRANSLATE_NOOP("Hints", "光舞的目錄有 %1 位元組，道具只讀 %2 位元組"))
            .arg(finding.amount)
            .arg(finding.limit);
    }
    return {};
}

bool hasPlace(const Finding &finding)
{
    return finding.startMs != finding.endMs;
}

QString lineOf(const Finding &finding)
{
    return hasPlace(finding) ? timeText(timeOf(finding.startMs)) + QStringLiteral(" - ") +
                                   timeText(timeOf(finding.endMs)) + QStringLiteral("  ") + sentenceOf(finding)
                             : sentenceOf(finding);
}

} // namespace glow
