// The main window, which is the document as well: it owns the tracks, the editor's state, the song and the history. Its
// slots stand in the folders of the subsystems that they belong to (src/*/mainwindow_*.cpp), grouped below in the same
// order. Slots named on_<object>_<signal> are connected by name when the form is set up.
#pragma once

#include "app/edithistory.h"
#include "show/model/gadgetcatalogue.h"
#include "show/model/patternrecord.h"
#include "show/model/patternsettings.h"
#include "show/wire/portscan.h"

#include <QAudioDecoder>
#include <QColor>
#include <QList>
#include <QMainWindow>
#include <QMediaPlayer>
#include <QPixmap>
#include <QPointF>
#include <QString>
#include <QStringList>
#include <QTime>
#include <QVector>
#include <QtCharts/QLineSeries>

#include <functional>
#include <memory>
#include <optional>

class ChartView;
class Recovery;
class QActionGroup;
class QProgressDialog;
class QSerialPort;
class TimeLeftLabel;
class Timeline;
class TimelineItem;
class WorkerThread;

namespace Ui {
class MainWindow;
}

namespace glow {
struct Finding;
struct Project;
class RecoveryStore;
struct UnsavedShow;
struct WriteResult;
} // namespace glow

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
    ~MainWindow() override;

    QMediaPlayer *player = nullptr; // the song player, notifies every 10 ms
    QList<Timeline *> timelines;    // all tracks in list order, never empty once the window stands
    Timeline *currentTimeline =
        nullptr;          // the track being edited, previewed and exported; never null once the window stands
    int patternWidth = 0; // columns of the editor's picture at height ledCount
    int pictureWidth = 0; // the same of the picture alone, without the gap
    TimelineItem *currentItem = nullptr; // the pattern open in the editor, null in new mode
    TimelineItem *previewItem = nullptr; // the pattern that the preview last showed
    QString picPath;                     // where picture dialogs start
    QString currentFile;                 // path of the open project, or the directory to offer
    QPixmap textPixmap;                  // the editor's present results
    QPixmap effectPixmap;
    QPixmap picturePixmap;
    QAudioDecoder *audioDecoder = nullptr; // null until a song is read
    bool hasFile = false;                  // currentFile names a project that Save may overwrite without asking
    bool modified = false;                 // set when a snapshot was taken
    QActionGroup *languageGroup = nullptr;
    QActionGroup *gadgetGroup = nullptr;
    QActionGroup *chipGroup = nullptr;
    QColor foreColor = Qt::white; // the editor's two colours, shared by its tabs
    QColor backColor = Qt::black;
    QVector<glow::Gadget> gadgetTable;
    EditHistory history;
    Ui::MainWindow *ui = nullptr;
    ChartView *chartView = nullptr; // the waveform, hidden until a song is read

    QProgressDialog *decodeProgress = nullptr; // of the running decode
    QVector<QPointF> waveSamples;              // waveform points; more than 1 mean that a song is loaded
    QtCharts::QLineSeries *waveSeries = nullptr;
    double waveMax = 0; // largest absolute y of waveSamples

    WorkerThread *uploadThread = nullptr; // null whenever no upload is under way
    int propWaitMs = glow::propWaitMs;    // how long a prop may take to speak, milliseconds
    TimeLeftLabel *timeLeft = nullptr;    // in the status line: how long the work in hand will take

    // The show as it would be saved. progress, when given, is called with each pattern's index
    // within its track.
    glow::Project asProject(const std::function<void(int)> &progress = {}) const;

    // From here on a copy of the show is kept in the store while it is not saved. The window owns the keeper.
    Recovery *keepUnsaved(std::unique_ptr<glow::RecoveryStore> store);

    // Opens a show that an earlier run left unsaved: it belongs to the file it belonged to, and is not saved yet.
    void restoreShow(const glow::UnsavedShow &show);

    // True if a song is loaded: the player is the clock then.
    bool hasSong() const { return waveSamples.size() > 1; }

    // The computed repeat count of the picture now in the editor, at least 1 (see repeatrules.h).
    int suggestRepeat() const;

    // Counts the pictures whose files are gone and offers a search. 1 if nothing is lost, else 0.
    int scanMissingPictures();

    // What the folders ask of each other's widgets (each in the mainwindow_*.cpp of the folder that owns the widget).
    bool isTrackEmpty() const;                     // the current track holds no pattern
    QVector<QByteArray> trackBlobs() const;        // of the current track, in list order
    QVector<glow::PatternRecord> sortedPatterns(); // the current track's patterns, put into start-time order first
    QStringList settingsTexts() const;             // of all patterns of all tracks
    void rewriteSettings(const std::function<QString(const QString &)> &rewrite); // of all patterns of all tracks
    int trackNumber(const Timeline *track) const;                                 // of its label
    QTime headTime() const;                                                       // of the play-head
    void setHeadTime(const QTime &time);                                          // as the clock moves it
    int startMarkMs() const;           // show time of the start mark, 0 when none
    void seekClock(const QTime &time); // the player, or the silent clock of a show without a song
    void seekPreview(float share);     // the preview's step at that share of the pattern that it shows
    void resizeWave();                 // the waveform at the present zoom and height

    // Writes the frame data and the show header of the current track into the working directory; leaves the preview
    // disabled. The track should hold at least one item. Returns why the files are not whole; empty if they are.
    QString buildDeviceImage();

    // Hides all tracks with their labels and schedules them for deletion; no member names one of them afterwards. The
    // caller makes a fresh track and clears the history in the same step.
    void discardTracks();

    // The empty show that New and Load start from: one fresh track, new mode, the time fields at 0 and 5 seconds.
    void resetDocument();

    // How the window is laid out, in the settings: where the dock stands, and how the space is split
    // (app/mainwindow_desk.cpp).
    void keepLayout() const;
    void restoreLayout();

signals:
    void showIsSafe();     // as it stands it is saved, or is what was opened, or new
    void showIsMisfiled(); // it is saved, but under a name that opens as something else
    void showIsReplaced(); // another one has taken its place
    void showIsLeft();     // the window closes after an attempt to save
    void showIsGivenUp();  // the window closes, and the user does not want the show saved

    void operate();
    void Upload_Cancel_Clicked();

public slots:
    // app/mainwindow.cpp, app/mainwindow_files.cpp: the shell
    void updateStatus();
    void data_changed();
    void outlog();
    void on_actionPreference_triggered();
    bool on_actionNew_triggered();
    void on_actionLoad_triggered();
    void on_actionSave_triggered();
    void on_actionSaveas_triggered();
    void LoadFile(QString path);
    void on_actionChinese_triggered();
    void on_actionEnglish_triggered();
    void on_actionCompleteEnglish_triggered();
    void addQuit();
    void addCheck();   // in device/mainwindow_check.cpp
    void warnOfWipe(); // in device/mainwindow_maintenance.cpp
    void loadPresets();

    // app/mainwindow_gadget.cpp: the prop
    void gadgetchange(QAction *a);
    void on_Leds_valueChanged(int arg1);
    void on_FPS_V_valueChanged(int arg1);
    void on_action_LED_M_triggered();

    // app/mainwindow_editor.cpp: the pattern panel
    void on_Mode_t1_timeChanged(const QTime &time);
    void on_Mode_t2_timeChanged(const QTime &time);
    void on_Mode_last_valueChanged(double seconds);
    void on_Mode_loop_valueChanged(int count);
    void on_suggest_valueChanged(int count);
    void on_Speed_slide_valueChanged(int value);
    void on_radio_speed_slide_toggled(bool on);
    void on_NEW_radio_toggled(bool on);
    void on_Mode_Pic_currentChanged(int index);
    void on_Addbutton_hovered(bool over);
    void on_Add_Button_clicked();
    void on_actionEnter_triggered();
    void loadItemToEditor(TimelineItem *item);

    // app/mainwindow_history.cpp
    void on_actionUndo_triggered();
    void on_actionRedo_triggered();

    // timeline/mainwindow_tracks.cpp: tracks, selection, drags, clipboard
    void addTimeline(short index);
    void on_timeline_Pressed(Timeline *t, bool update);
    void on_timeline_add_clicked();
    void on_timeline_remove_clicked();
    void on_tlDuplicated_clicked(Timeline *t);
    void on_timelineItem_Clicked(TimelineItem *item, bool moved);
    void on_timeline_dragIn(Timeline *t);
    void on_timelineItem_dragEnd(const QByteArray &orig, TimelineItem *item, Timeline *orig_tl);
    void on_itemCopy_clicked();
    void on_itemPaste_clicked();
    void on_actionCopy_triggered();
    void on_actionPaste_triggered();

    // timeline/mainwindow_ruler.cpp: ruler, play-head, zoom
    void on_timeline_scaler_valueChanged(int value);
    void on_timeline_max_timeChanged(const QTime &time);
    void on_timeline_scrolled(int delta);
    void on_timeline_splitter_splitterMoved(int pos, int index);
    void timeline_vertical_scroll_changed(int min, int max);
    void on_timeline_headers_indicatorMoved(int x, bool user);

    // song/mainwindow_song.cpp: loading a song
    void on_SongRead_Button_clicked();
    void ReadSong(const QString &path);
    void readAudioBuffer();
    void audioPlotting();
    void decoder_PositionChanged(qlonglong ms);
    void durationChanged(qlonglong t);
    void cancel_decoder();
    void decodeFailed();
    void on_Song_dir_linkHovered(const QString &link);

    // song/mainwindow_clock.cpp: playing
    void on_Song_play_clicked();
    void on_Song_play_2_triggered();
    void on_Song_Stop_clicked();
    void on_Song_Slider_sliderMoved(int position);
    void on_Song_time_editingFinished();
    void positionChanged(qlonglong t);
    void stateChanged(QMediaPlayer::State state);
    void timerTimeout(qlonglong t);
    void on_Song_rate_valueChanged(double arg1);
    void on_Song_rec_clicked();

    // render/mainwindow_picture.cpp
    void picload(QString path);
    void on_Pic_Loads_clicked();
    void on_Pic_Capture_clicked();
    void on_Pic_Slide_valueChanged(int value);
    void on_Pic_revH_clicked(bool checked);
    void on_Pic_revV_clicked(bool checked);

    // render/mainwindow_text.cpp: text and colour
    void on_text_Edit_textChanged(const QString &text);
    void on_fontComboBox_currentIndexChanged(int index);
    void on_Font_size_currentIndexChanged(int index);
    void on_Text_slide_valueChanged(int value);
    void on_Text_revH_stateChanged(int state);
    void on_Text_revV_clicked(bool checked);
    void on_text_rnum_valueChanged(int value);
    void on_text_gnum_valueChanged(int value);
    void on_text_bnum_valueChanged(int value);
    void on_text_rslide_valueChanged(int value);
    void on_text_gslide_valueChanged(int value);
    void on_text_bslide_valueChanged(int value);
    void on_text_bcolor_toggled(bool checked);
    void on_Color_dialog_clicked();
    void on_Color_Exc_clicked();
    void on_Color_R_valueChanged(int arg1);
    void on_Color_G_valueChanged(int arg1);
    void on_Color_B_valueChanged(int arg1);
    void on_R_slide_valueChanged(int value);
    void on_G_slide_valueChanged(int value);
    void on_B_slide_valueChanged(int value);
    void on_Color_View_clicked();

    // render/mainwindow_film.cpp
    void on_actionFilm_triggered();

    // render/mainwindow_effect.cpp
    void on_Spe_comboBox_currentIndexChanged(int index);
    void on_Spe_comboBox_highlighted(int index);
    void on_Spe_width_valueChanged(int value);
    void on_Spe_revV_clicked();
    void on_Spe_revH_clicked();
    void on_Spe_color3_clicked();
    void on_Spe_rnum_valueChanged(int value);
    void on_Spe_gnum_valueChanged(int value);
    void on_Spe_bnum_valueChanged(int value);
    void on_Spe_rslide_valueChanged(int value);
    void on_Spe_gslide_valueChanged(int value);
    void on_Spe_bslide_valueChanged(int value);
    void on_Spe_back_toggled(bool checked);
    void on_Color_dialog_2_clicked();
    void on_Color_Exc2_clicked();
    void on_Spe_randon_clicked();

    // preview/mainwindow_preview.cpp
    void Oviewer_change(int r, int g, int b);
    void Oviewer_change();
    void glpreview_change(bool on, const QPixmap &pixmap, short leds, int fps, double seconds, int repeats);
    void on_Oview_slide_valueChanged(int value);
    void on_static_checkbox_toggled(bool checked);

    // device/mainwindow_export.cpp, device/mainwindow_upload.cpp
    void on_Ex_Button_clicked();
    void on_UPload_Button_clicked();
    void on_actionUpload_triggered();
    void mySlot(int arg1, int arg2);
    void warnex(const QString &str);
    void finishup();
    void terminateup();

    // device/mainwindow_check.cpp
    void checkShow();
    void goTo(int ms); // show time

    // device/mainwindow_maintenance.cpp
    void on_actionFormat_triggered();
    void on_actionFirUpdate_triggered();
    void updatesystem();
    void on_action_admin_triggered();

    // library/mainwindow_library.cpp
    void on_actionDIR_triggered();
    void on_actionSQL_triggered();
    void on_actionAbout_triggered();

public:
    // The single place where the editor shows a picture in the preview: at the present LED count, duration and repeat
    // count.
    void previewInEditor(const QPixmap &pixmap);

    // The preview of a pattern that stands on a track.
    void previewPattern(const glow::PatternRecord &pattern, double seconds);

    // Label numbers and rows: the bottom row is 1, every label stands in its track's row.
    void renumberTracks();

    // Asks what to do about a picture pattern in the editor whose file is gone; a replacement goes to picload
    // (library/mainwindow_library.cpp).
    void askForLostPicture();

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override; // in timeline/mainwindow_ruler.cpp

private:
    void addRecentProjects(); // in app/mainwindow_desk.cpp
    bool mayReplaceShow();    // asks whether a project may be opened over the show
    void takeDropped(const QString &path);

    // The steps of construction, in this order; each stands on what the earlier ones made.
    void setUpForm();
    void connectForm();
    void setUpGroups();
    void setUpHistory();
    void setUpTimeline(); // in timeline/mainwindow_ruler.cpp
    void setUpSong();     // in song/mainwindow_song.cpp
    void warnOfSmallScreen();

    bool isStaleDecode(const QObject *caller) const;
    void takeAudioBuffer();
    bool drainDecoder();
    void showWaveform();
    void takeLength(int lengthMs);
    void readyPlayer();
    void endDecode();
    void forgetDecode();
    void rewindSong();
    void followPattern(TimelineItem *item, const QTime &time);
    void keepHeadInView();

    bool decoding = false;      // audioDecoder is at work: neither finished, failed nor cancelled
    bool readScheduled = false; // a further turn of readAudioBuffer is on its way

    static bool isCancelledUpload(const QObject *caller);
    // Export has its turn once an upload has ended; its tool tip says so.
    void allowExport(bool allowed);
    void tellOfExport(const QString &path, const QString &error);
    void forgetProgress();
    QVector<glow::Finding> checkTrack() const;
    // What the status line says of a save, of the Delete key and of a file that gives no show.
    void tellOfSave(const glow::WriteResult &result);
    void tellOfDelete();
    void tellOfOpening(const std::optional<QByteArray> &bytes);
    // The player's song is read no more; the status line says why.
    void tellOfSong();

    void buildGadgetMenu();
    // Takes the pattern out of the editor: no pattern is marked as open there.
    void deselect();
    // The panel's present state as a pattern; nothing if its tab has no picture.
    std::optional<glow::PatternRecord> editorPattern() const;
    // What the present tab of the panel is set to, and of a tab that may not be the present one.
    glow::PatternSettings panel() const;
    glow::TextSettings textTab() const;
    glow::EffectSettings effectTab() const;
    // Sets the tab of the settings' kind and shows it, which renders it. Old text files take a picture's path as it
    // stands and have a quirk of their own with an effect's flips.
    enum class Origin { Item, OldFile };
    void showInPanel(const glow::PatternSettings &settings, Origin origin);
    void fillTab(const glow::PictureSettings &settings, Origin origin);
    void fillTab(const glow::ColourSettings &settings, Origin origin);
    void fillTab(const glow::TextSettings &settings, Origin origin);
    void fillTab(const glow::EffectSettings &settings, Origin origin);
    // Takes over the two numbers of an opened project and picks the catalogue row that has both, else the custom entry.
    // A binary project also opens at the widest zoom.
    void applyLoadedGadget(int leds, float rate, bool widestZoom);
    // The two formats of projects, into the empty document (app/mainwindow_project.cpp).
    void openProject(const glow::Project &project);
    void openOldProject(const QByteArray &bytes);
    // Makes the picture of the text tab, or of the effect tab, from its present controls.
    void renderText();
    void renderEffect();
    // A new result of the picture tab: its repeat count, the preview and the tab's own view.
    void showPicturePixmap(const QPixmap &pixmap);
    // The colour that the text tab's numbers edit.
    QColor &selectedTextColor();
    // Shows the numbers of the colour tab on its button and in the preview.
    void showColor();
    // A show without a song: nothing plays or decodes any more, and a save writes that there is none.
    void closeSong();
};
