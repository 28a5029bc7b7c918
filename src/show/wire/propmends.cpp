#include "show/wire/propmends.h"

#include "show/base/hint.h"
#include "show/wire/portnames.h"
#include "show/wire/portscan.h"
#include "show/wire/upload.h"

#include <QDir>

namespace glow {

QString mendOf(ScanResult result)
{
    switch (result) {
    case ScanResult::Found:
        return {};
    case ScanResult::NoneOpen:
        return hint(QT_TRANSLATE_NOOP("Hints", "・傳輸線：改用能傳資料的線，重新插上道具，打開電源並等它開機。\n"
                                               "・其他程式：連接埠一次只能給一個程式用，請關閉其他序列埠程式。")) +
               u'\n' + portAccessMend();
    case ScanResult::NoAnswer:
        return hint(QT_TRANSLATE_NOOP("Hints", "・連接埠打得開，但沒有道具說話：重新插上道具，等它開機後再試。\n"
                                               "・拔除其他序列裝置，每個不說話的連接埠要等 5 秒。"));
    }
    return {};
}

QString mendOf(UploadEnd end)
{
    switch (end) {
    case UploadEnd::Sent:
        return {};
    case UploadEnd::FilesUnreadable:
        return hint(QT_TRANSLATE_NOOP("Hints", "・暫存檔 extemp.tmp 與 extemp2.tmp 寫不進工作資料夾 %1。\n"
                                               "・磁碟已滿：騰出空間。沒有寫入權限：從可寫入的資料夾啟動程式。"))
            .arg(QDir::toNativeSeparators(QDir::currentPath()));
    case UploadEnd::NoReply:
        return hint(QT_TRANSLATE_NOOP("Hints", "・裝置打了招呼，卻沒有回應上傳：重新插上道具再試。\n"
                                               "・其他程式（例如剛插上時的 ModemManager）可能也在讀這個連接埠。\n"
                                               "・它可能不是道具：拔除其他序列裝置。"));
    case UploadEnd::Refused:
        return hint(QT_TRANSLATE_NOOP("Hints", "・道具拒收這個光舞：在「輸出至」改選其他軌道。\n"
                                               "・記憶體可能已滿：「其他 → 清除記憶體」清除後再上傳。\n"
                                               "・重新啟動道具再試。"));
    case UploadEnd::Broken:
        return hint(QT_TRANSLATE_NOOP("Hints", "・傳輸中斷線：檢查傳輸線，重新插上道具再上傳。"));
    }
    return {};
}

QString mendOfWipe()
{
    return hint(QT_TRANSLATE_NOOP("Hints", "・道具沒有確認已清除：重新插上道具，等它開機後再試。\n"
                                           "・其他程式可能占用連接埠：請關閉。"));
}

} // namespace glow
