// What is told of films, in the program's language.
#include "show/film/filmplan.h"

#include <QCoreApplication>

namespace glow {

namespace {

class Film
{
    Q_DECLARE_TR_FUNCTIONS(Film)
};

} // namespace

QString filmErrorText(FilmError error, const QString &detail)
{
    switch (error) {
    case FilmError::None:
        break;
    case FilmError::UnknownFormat:
        return Film::tr("%1：檔名須以 .mp4、.webm、.gif 或 .png 結尾").arg(detail);
    case FilmError::BadSize:
        return Film::tr("畫面的寬與高須為 %1 到 %2 的偶數").arg(leastFilmSide).arg(mostFilmSide);
    case FilmError::BadRate:
        return Film::tr("每秒畫面數須為 1 到 %1").arg(mostFilmRate);
    case FilmError::BadGifRate:
        return Film::tr(".gif 每秒最多 %1 個畫面").arg(mostGifRate);
    case FilmError::NoSuchTrack:
        return Film::tr("沒有軌道 %1").arg(detail);
    case FilmError::EmptyTrack:
        return Film::tr("軌道 %1 沒有圖樣").arg(detail);
    case FilmError::EmptyShow:
        return Film::tr("所有軌道都沒有圖樣");
    case FilmError::NoLeds:
        return Film::tr("道具的 LED 數為 0");
    case FilmError::TooManyTracks:
        return Film::tr("畫面太小，放不下所有軌道");
    case FilmError::FromBehindTo:
        return Film::tr("影片的開始須早於結束 %1").arg(detail);
    case FilmError::FromBehindEnd:
        return Film::tr("影片的開始須早於光舞的結束 %1").arg(detail);
    case FilmError::TooLong:
        return Film::tr("影片長 %1，最多為 %2 分鐘，請選擇其中一段").arg(detail).arg(longestFilmMs / 60000);
    case FilmError::GifTooLong:
        return Film::tr("影片長 %1，.gif 最多為 %2 秒，請選擇其中一段").arg(detail).arg(longestGifMs / 1000);
    case FilmError::NoEncoder:
        return Film::tr("找不到 ffmpeg，請安裝套件 ffmpeg (sudo apt install ffmpeg)");
    case FilmError::GoalNoFile:
        return Film::tr("%1 不是一般檔案").arg(detail);
    case FilmError::GoalReadOnly:
        return Film::tr("無法寫入 %1").arg(detail);
    case FilmError::GoalBusy:
        return Film::tr("%1 正由另一個輸出寫入").arg(detail);
    case FilmError::EncoderFailed:
        return Film::tr("ffmpeg 未能完成影片，原有檔案未變動\n%1").arg(detail);
    case FilmError::NotMoved:
    case FilmError::NotWritten:
        return Film::tr("無法寫入影片，原有檔案未變動\n%1").arg(detail);
    case FilmError::Cancelled:
        return Film::tr("已取消影片輸出");
    }
    return {};
}

} // namespace glow
