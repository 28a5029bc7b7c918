<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="zh_TW">
<context>
    <name>MainWindow</name>
    <message>
        <source>檔案</source>
        <translation>File</translation>
    </message>
    <message>
        <source>編輯</source>
        <translation>Edit</translation>
    </message>
    <message>
        <source>其他</source>
        <translation>setting</translation>
    </message>
    <message>
        <source>選擇道具</source>
        <translation>gadgets</translation>
    </message>
    <message>
        <source>取代圖片位置...</source>
        <translation>Replace pics...</translation>
    </message>
    <message>
        <source>取代圖片位置</source>
        <translation>replace pictures dir</translation>
    </message>
    <message>
        <source>匯出圖庫...</source>
        <translation>export pics...</translation>
    </message>
    <message>
        <source>復原</source>
        <translation>Undo</translation>
    </message>
    <message>
        <source>重作</source>
        <translation>Redo</translation>
    </message>
    <message>
        <source>上傳</source>
        <translation>Upload</translation>
    </message>
    <message>
        <source>清除記憶體</source>
        <translation>wipe memory</translation>
    </message>
    <message>
        <source>更新韌體...</source>
        <translation>Firmware update...</translation>
    </message>
    <message>
        <source>後台...</source>
        <translation>Terminal...</translation>
    </message>
    <message>
        <source>預覽視窗...</source>
        <translation>Preview</translation>
    </message>
    <message>
        <source>入門版</source>
        <translation>Basic</translation>
    </message>
    <message>
        <source>進階版</source>
        <translation>Pro</translation>
    </message>
    <message>
        <source>音樂播放/暫停</source>
        <translation>Music paly/pause</translation>
    </message>
    <message>
        <source>自訂...</source>
        <translation>Custom...</translation>
    </message>
    <message>
        <source>使用圖片</source>
        <translation>Picture</translation>
    </message>
    <message>
        <source>單色</source>
        <translation>Color</translation>
    </message>
    <message>
        <source>文字</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>讀入圖片</source>
        <translation>Load picture</translation>
    </message>
    <message>
        <source>螢幕截圖</source>
        <translation>Screen Shot</translation>
    </message>
    <message>
        <source>垂直翻轉</source>
        <translation>Vertical flip</translation>
    </message>
    <message>
        <source>水平翻轉</source>
        <translation>horizontal flip</translation>
    </message>
    <message>
        <source>文字色</source>
        <translation>Front</translation>
    </message>
    <message>
        <source>背景色</source>
        <translation>Background</translation>
    </message>
    <message>
        <source>寬度</source>
        <translation>width</translation>
    </message>
    <message>
        <source>三色分離</source>
        <translation>Seperate RGB</translation>
    </message>
    <message>
        <source>閃爍</source>
        <translation>flash</translation>
    </message>
    <message>
        <source>鋸齒</source>
        <translation>windmill</translation>
    </message>
    <message>
        <source>跳躍</source>
        <translation>jump</translation>
    </message>
    <message>
        <source>淡入淡出</source>
        <translation>fade</translation>
    </message>
    <message>
        <source>彩虹</source>
        <translation>rainbow</translation>
    </message>
    <message>
        <source>箭頭</source>
        <translation>arrow</translation>
    </message>
    <message>
        <source>箭頭2</source>
        <translation>arrow2</translation>
    </message>
    <message>
        <source>流星</source>
        <translation>meteor</translation>
    </message>
    <message>
        <source>流星2</source>
        <translation>meteor2</translation>
    </message>
    <message>
        <source>方塊</source>
        <translation>box</translation>
    </message>
    <message>
        <source>重複次數</source>
        <translation>repeat</translation>
    </message>
    <message>
        <source>自動計算:</source>
        <translation>auto</translation>
    </message>
    <message>
        <source>新增</source>
        <translation>Add</translation>
    </message>
    <message>
        <source>確認編輯</source>
        <translation>Comfirm</translation>
    </message>
    <message>
        <source>軌道</source>
        <translation>track</translation>
    </message>
    <message>
        <source>此設定不會影響輸出</source>
        <translation>This setting has no effect with the output</translation>
    </message>
    <message>
        <source>Ctrl+滑鼠滾輪</source>
        <translation>Ctrl+Wheel</translation>
    </message>
    <message>
        <source>上傳至道具</source>
        <translation>upload to device</translation>
    </message>
    <message>
        <source>匯出</source>
        <translation>export</translation>
    </message>
    <message>
        <source>解析度過低</source>
        <translation>Low resolution warning</translation>
    </message>
    <message>
        <source>最低解析度1280*720</source>
        <translation>Limit 1280*720</translation>
    </message>
    <message>
        <source>&lt;font color='white'&gt;關閉前儲存？&lt;/font&gt;</source>
        <translation>&lt;font color='white'&gt;Save before close？&lt;/font&gt;</translation>
    </message>
    <message>
        <source>&lt;font color='white'&gt;未儲存部分將會流失，確定開啟新檔?&lt;/font&gt;</source>
        <translation>&lt;font color='white'&gt;Unsaved part will lost, still renew?&lt;/font&gt;</translation>
    </message>
    <message>
        <source>&lt;font color='white'&gt;未儲存部分將會流失，確定讀取舊檔?&lt;/font&gt;</source>
        <translation>&lt;font color='white'&gt;Search loss picture?&lt;/font&gt;</translation>
    </message>
    <message>
        <source>讀檔</source>
        <translation>load</translation>
    </message>
    <message>
        <source>存檔</source>
        <translation>save as</translation>
    </message>
    <message>
        <source>存檔失敗</source>
        <translation>save failed</translation>
    </message>
    <message>
        <source>無法寫入 %1
%2
原有檔案未變動，請另存新檔。</source>
        <translation>%1 could not be written.
%2
The file is as it was. Please save under another name.</translation>
    </message>
    <message>
        <source>檔案的軌道過多，只讀入前 %1 軌</source>
        <translation>The file has too many tracks; only the first %1 were read.</translation>
    </message>
    <message>
        <source>儲存中...</source>
        <translation>Saving...</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>圖樣數：</source>
        <translation>modes:</translation>
    </message>
    <message>
        <source>儲存格式過舊，請使用舊版軟體(v2.9↓)進行轉檔</source>
        <translation>File is too old, please use the old version(v2.9↓)</translation>
    </message>
    <message>
        <source>選歌</source>
        <translation>Choose song</translation>
    </message>
    <message>
        <source>讀取音樂中...</source>
        <translation>Loading music...</translation>
    </message>
    <message>
        <source>讀圖(可複選)</source>
        <translation>Load picture (Multiple choose supported)</translation>
    </message>
    <message>
        <source>圖片讀取</source>
        <translation>Load pictures</translation>
    </message>
    <message>
        <source>圖片讀取完成!!</source>
        <translation>Finish loading pictures!!</translation>
    </message>
    <message>
        <source>選擇顏色</source>
        <translation>choose color</translation>
    </message>
    <message>
        <source>完成</source>
        <translation>finish</translation>
    </message>
    <message>
        <source>上傳完成</source>
        <translation>Upload finished</translation>
    </message>
    <message>
        <source>已取消上傳</source>
        <translation>Canceled</translation>
    </message>
    <message>
        <source>傳輸中...</source>
        <translation>Uploading...</translation>
    </message>
    <message>
        <source>無可上傳圖樣</source>
        <translation>No uploadable pattern</translation>
    </message>
    <message>
        <source>請選擇正確之時間軸</source>
        <translation>Please choose the correct track</translation>
    </message>
    <message>
        <source>偵測不到裝置！</source>
        <translation>No device detected!</translation>
    </message>
    <message>
        <source>找不到裝置！</source>
        <translation>No device found!!</translation>
    </message>
    <message>
        <source>記憶體清除完成</source>
        <translation>wipe finished</translation>
    </message>
    <message>
        <source>清除記憶體逾時</source>
        <translation>wipe time out</translation>
    </message>
    <message>
        <source>圖片位置</source>
        <translation>picture directory</translation>
    </message>
    <message>
        <source>圖片儲存位置</source>
        <translation>Pics save directory</translation>
    </message>
    <message>
        <source>圖庫匯出完成</source>
        <translation>export finish</translation>
    </message>
    <message>
        <source>輸出影片...</source>
        <translation>Export film...</translation>
    </message>
    <message>
        <source>將光舞輸出為道具旋轉的影片</source>
        <translation>A film of the spinning prop with the song under it</translation>
    </message>
</context>
<context>
    <name>Timeline</name>
    <message>
        <source>圖樣</source>
        <translation>pattern</translation>
    </message>
    <message>
        <source>貼上</source>
        <translation>Paste</translation>
    </message>
    <message>
        <source>開始時間: </source>
        <translation>start time: </translation>
    </message>
    <message>
        <source>結束時間: </source>
        <translation>end time: </translation>
    </message>
</context>
<context>
    <name>TimelineItem</name>
    <message>
        <source>圖樣</source>
        <translation>pattern</translation>
    </message>
    <message>
        <source>移除</source>
        <translation>remove</translation>
    </message>
    <message>
        <source>複製</source>
        <translation>copy</translation>
    </message>
    <message>
        <source>剪下</source>
        <translation>cut</translation>
    </message>
    <message>
        <source>開始時間: </source>
        <translation>start time: </translation>
    </message>
    <message>
        <source>結束時間: </source>
        <translation>end time: </translation>
    </message>
</context>
<context>
    <name>WorkerThread</name>
    <message>
        <source>偵測不到裝置！</source>
        <translation>No device detect!</translation>
    </message>
    <message>
        <source>輸出錯誤！</source>
        <translation>export error!</translation>
    </message>
</context>
<context>
    <name>ScreenCapture</name>
    <message>
        <source>儲存圖片</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>選擇顏色</source>
        <translation>choose color</translation>
    </message>
</context>
<context>
    <name>about</name>
    <message>
        <source>檢查更新...</source>
        <translation>check update...</translation>
    </message>
    <message>
        <source>開新檔案</source>
        <translation>New</translation>
    </message>
    <message>
        <source>進入軟體</source>
        <translation>Enter</translation>
    </message>
    <message>
        <source>&lt;font color='white'&gt;無法連線至更新伺服器&lt;/font&gt;</source>
        <translation>&lt;font color='white'&gt;Cannot connect to the updating server&lt;/font&gt;</translation>
    </message>
    <message>
        <source>已是最新版本</source>
        <translation>Already the latest version</translation>
    </message>
    <message>
        <source>有更新 </source>
        <translation>New version </translation>
    </message>
    <message>
        <source>最新版為ver</source>
        <translation>ver</translation>
    </message>
    <message>
        <source>是否更新？&lt;br&gt;</source>
        <translation>Update? &lt;br&gt;</translation>
    </message>
    <message>
        <source>讀檔</source>
        <translation>load</translation>
    </message>
</context>
<context>
    <name>Hints</name>
    <message>
        <source>模擬道具</source>
        <translation>simulated prop</translation>
    </message>
    <message>
        <source>旋轉速度</source>
        <translation>spinning speed</translation>
    </message>
    <message>
        <source>旋轉速度：中間靜止，兩端最快</source>
        <translation>Spinning speed: still in the middle, fastest at both ends</translation>
    </message>
    <message>
        <source>音樂停止</source>
        <translation>stop the music</translation>
    </message>
    <message>
        <source>歌曲</source>
        <translation>song</translation>
    </message>
    <message>
        <source>播放時間</source>
        <translation>playing time</translation>
    </message>
    <message>
        <source>播放位置</source>
        <translation>playing position</translation>
    </message>
    <message>
        <source>時間軸長度</source>
        <translation>length of the timeline</translation>
    </message>
    <message>
        <source>軌道編號</source>
        <translation>track numbers</translation>
    </message>
    <message>
        <source>時間軸</source>
        <translation>timeline</translation>
    </message>
    <message>
        <source>軌道捲動</source>
        <translation>scroll the tracks</translation>
    </message>
    <message>
        <source>新增軌道</source>
        <translation>add a track</translation>
    </message>
    <message>
        <source>移除軌道</source>
        <translation>remove the track</translation>
    </message>
    <message>
        <source>縮小</source>
        <translation>zoom out</translation>
    </message>
    <message>
        <source>時間軸縮放</source>
        <translation>zoom of the timeline</translation>
    </message>
    <message>
        <source>放大</source>
        <translation>zoom in</translation>
    </message>
    <message>
        <source>輸出進度</source>
        <translation>output progress</translation>
    </message>
    <message>
        <source>每秒行數</source>
        <translation>columns a second</translation>
    </message>
    <message>
        <source>燈數</source>
        <translation>number of LEDs</translation>
    </message>
    <message>
        <source>圖樣種類</source>
        <translation>kind of pattern</translation>
    </message>
    <message>
        <source>間隔</source>
        <translation>gap</translation>
    </message>
    <message>
        <source>圖片路徑</source>
        <translation>path of the picture</translation>
    </message>
    <message>
        <source>圖片預覽</source>
        <translation>preview of the picture</translation>
    </message>
    <message>
        <source>單色紅</source>
        <translation>colour: red</translation>
    </message>
    <message>
        <source>單色綠</source>
        <translation>colour: green</translation>
    </message>
    <message>
        <source>單色藍</source>
        <translation>colour: blue</translation>
    </message>
    <message>
        <source>字型</source>
        <translation>font</translation>
    </message>
    <message>
        <source>字高</source>
        <translation>height of the text</translation>
    </message>
    <message>
        <source>字高：10 為全高</source>
        <translation>Height of the text: 10 fills the prop</translation>
    </message>
    <message>
        <source>字寬</source>
        <translation>width of the text</translation>
    </message>
    <message>
        <source>文字紅</source>
        <translation>text: red</translation>
    </message>
    <message>
        <source>文字綠</source>
        <translation>text: green</translation>
    </message>
    <message>
        <source>文字藍</source>
        <translation>text: blue</translation>
    </message>
    <message>
        <source>文字預覽</source>
        <translation>preview of the text</translation>
    </message>
    <message>
        <source>圖騰紅</source>
        <translation>effect: red</translation>
    </message>
    <message>
        <source>圖騰綠</source>
        <translation>effect: green</translation>
    </message>
    <message>
        <source>圖騰藍</source>
        <translation>effect: blue</translation>
    </message>
    <message>
        <source>圖騰預覽</source>
        <translation>preview of the effect</translation>
    </message>
    <message>
        <source>圖騰</source>
        <translation>effect</translation>
    </message>
    <message>
        <source>自動計算次數</source>
        <translation>suggested repeats</translation>
    </message>
    <message>
        <source>速度</source>
        <translation>speed</translation>
    </message>
    <message>
        <source>速度：雙擊回到中間</source>
        <translation>Speed: a double click returns to the middle</translation>
    </message>
    <message>
        <source>開始時間</source>
        <translation>start time</translation>
    </message>
    <message>
        <source>開始時間（分:秒.毫秒）</source>
        <translation>Start time (minutes:seconds.milliseconds)</translation>
    </message>
    <message>
        <source>長度</source>
        <translation>length</translation>
    </message>
    <message>
        <source>長度（秒）</source>
        <translation>Length in seconds</translation>
    </message>
    <message>
        <source>結束時間</source>
        <translation>end time</translation>
    </message>
    <message>
        <source>結束時間（分:秒.毫秒）</source>
        <translation>End time (minutes:seconds.milliseconds)</translation>
    </message>
    <message>
        <source>生產經銷</source>
        <translation>store</translation>
    </message>
    <message>
        <source>研發設計</source>
        <translation>web site</translation>
    </message>
    <message>
        <source>密碼</source>
        <translation>password</translation>
    </message>
    <message>
        <source>裝置訊息</source>
        <translation>messages of the prop</translation>
    </message>
    <message>
        <source>指令</source>
        <translation>command</translation>
    </message>
    <message>
        <source>截取</source>
        <translation>capture</translation>
    </message>
    <message>
        <source>畫筆</source>
        <translation>pen</translation>
    </message>
    <message>
        <source>橡皮擦</source>
        <translation>eraser</translation>
    </message>
    <message>
        <source>清除</source>
        <translation>clear</translation>
    </message>
    <message>
        <source>畫筆大小</source>
        <translation>size of the pen</translation>
    </message>
    <message>
        <source>波形</source>
        <translation>waveform</translation>
    </message>
    <message>
        <source>離開</source>
        <translation>Quit</translation>
    </message>
    <message>
        <source>使用手冊</source>
        <translation>Manual</translation>
    </message>
    <message>
        <source>按鍵與滑鼠</source>
        <translation>Keys and mouse</translation>
    </message>
    <message>
        <source>在瀏覽器開啟使用手冊，不需網路</source>
        <translation>Opens the manual in the browser; no network is needed</translation>
    </message>
    <message>
        <source>在瀏覽器開啟按鍵與滑鼠手勢的一覽表</source>
        <translation>Opens the table of keys and mouse gestures in the browser</translation>
    </message>
    <message>
        <source>manual.zh-TW.html</source>
        <translation>manual.en.html</translation>
    </message>
    <message>
        <source>keys.zh-TW.html</source>
        <translation>keys.en.html</translation>
    </message>
    <message>
        <source>使用手冊沒有安裝：缺少檔案 %1</source>
        <translation>The manual is not installed: the file %1 is missing</translation>
    </message>
    <message>
        <source>無法開啟瀏覽器，請自行開啟 %1</source>
        <translation>No browser could be started; please open %1 yourself</translation>
    </message>
    <message>
        <source>最近的專案</source>
        <translation>Recent projects</translation>
    </message>
    <message>
        <source>（還沒有）</source>
        <translation>(none yet)</translation>
    </message>
    <message>
        <source>按右鍵：最近的專案</source>
        <translation>right button: recent projects</translation>
    </message>
    <message>
        <source>只用了第一個檔案，未使用：%1</source>
        <translation>Only the first file was used, not: %1</translation>
    </message>
    <message>
        <source>授權：GPL-3.0-or-later，不附任何擔保</source>
        <translation>Licence: GPL-3.0-or-later, without any warranty</translation>
    </message>
    <message>
        <source>程式庫：Qt %1（LGPL-3.0）；聲音由 GStreamer（LGPL-2.1）解碼</source>
        <translation>Libraries: Qt %1 (LGPL-3.0); sound is decoded by GStreamer (LGPL-2.1)</translation>
    </message>
    <message>
        <source>手冊：%1</source>
        <translation>Manual: %1</translation>
    </message>
    <message>
        <source>未儲存光舞的副本：%1</source>
        <translation>Copy of an unsaved show: %1</translation>
    </message>
    <message>
        <source>已移除。「復原」收回的是移除之前的那次變更；先「復原」再「重作」，圖樣就會回來</source>
        <translation>Removed. Undo takes back the change before the removal; Undo and then Redo bring the pattern back</translation>
    </message>
    <message>
        <source>已移除。「復原」無法讓它回來</source>
        <translation>Removed. Undo cannot bring it back</translation>
    </message>
    <message>
        <source>沒有存檔：%1（%2）</source>
        <translation>Not saved: %1 (%2)</translation>
    </message>
    <message>
        <source>已存檔：%1</source>
        <translation>saved: %1</translation>
    </message>
    <message>
        <source>光舞存到了 %1，這個檔名無法再當專案開啟：請用「另存新檔」（Ctrl+Shift+S）存成 .gsw3</source>
        <translation>The show went to %1, a name that does not open as a project: use Save as (Ctrl+Shift+S) to save it as .gsw3</translation>
    </message>
    <message>
        <source>無法讀取：%1</source>
        <translation>Cannot be read: %1</translation>
    </message>
    <message>
        <source>檔案不存在：%1</source>
        <translation>No such file: %1</translation>
    </message>
    <message>
        <source>%1 裡是 .gsw3 專案，卻因檔名被當成舊文字檔讀取：請將檔名改為 .gsw3 再開啟</source>
        <translation>%1 holds a .gsw3 project but was read as old text because of its name: rename it to .gsw3 and open it again</translation>
    </message>
    <message>
        <source>檢查光舞</source>
        <translation>Check show</translation>
    </message>
    <message>
        <source>檢查結果</source>
        <translation>what was found</translation>
    </message>
    <message>
        <source>雙擊移到該處</source>
        <translation>A double click goes to the place</translation>
    </message>
    <message>
        <source>重新檢查</source>
        <translation>Check again</translation>
    </message>
    <message>
        <source>關閉</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>目前的軌道沒有圖樣。</source>
        <translation>The current track holds no pattern.</translation>
    </message>
    <message>
        <source>沒有發現問題：道具會照目前的軌道播放。</source>
        <translation>Nothing found: the prop plays the current track as drawn.</translation>
    </message>
    <message>
        <source>道具播放目前的軌道時，有 %1 處與畫面不同。雙擊移到該處。</source>
        <translation>The prop will not play the current track as drawn in %1 places. A double click goes to the place.</translation>
    </message>
    <message>
        <source>檢查光舞...</source>
        <translation>Check show...</translation>
    </message>
    <message>
        <source>列出目前軌道中道具不會照畫面播放的地方</source>
        <translation>Lists where the prop will not play the current track as drawn</translation>
    </message>
    <message>
        <source>磁碟已滿</source>
        <translation>the disk is full</translation>
    </message>
    <message>
        <source>將目前的軌道存成 .bin 檔</source>
        <translation>Writes the current track to a .bin file</translation>
    </message>
    <message>
        <source>先按一次「上傳至道具」，結束後（成功與否皆可）才能匯出</source>
        <translation>Press "upload to device" first: export is possible once an upload has ended, whether it succeeded or not</translation>
    </message>
    <message>
        <source>已匯出：%1</source>
        <translation>exported: %1</translation>
    </message>
    <message>
        <source>沒有匯出：%1（%2）</source>
        <translation>Not exported: %1 (%2)</translation>
    </message>
    <message>
        <source>立即清除道具的記憶體，不再詢問</source>
        <translation>Erases the memory of the prop at once, without a question</translation>
    </message>
    <message>
        <source>沒有更新韌體：連接埠打得開，但沒有道具說話</source>
        <translation>Firmware not updated: a port opens, but no prop speaks</translation>
    </message>
    <message>
        <source>沒有更新韌體：無法執行 %1</source>
        <translation>Firmware not updated: cannot run %1</translation>
    </message>
    <message>
        <source>上傳沒有完成。%1</source>
        <translation>The upload was not finished. %1</translation>
    </message>
    <message>
        <source>未設定更新位址</source>
        <translation>no update address is set</translation>
    </message>
    <message>
        <source>更新位址由 GLOWSMITH_UPDATE_URL 或 glowsmith.ini 的 update/url 設定</source>
        <translation>The address is set by GLOWSMITH_UPDATE_URL or by update/url in glowsmith.ini</translation>
    </message>
    <message>
        <source>無法讀取圖片：</source>
        <translation>This picture cannot be read: </translation>
    </message>
    <message>
        <source>無法使用的圖片：%1</source>
        <translation>Pictures that cannot be used: %1</translation>
    </message>
    <message>
        <source>約剩 %1 秒</source>
        <translation>about %1 s left</translation>
    </message>
    <message>
        <source>約剩 %1:%2</source>
        <translation>about %1:%2 left</translation>
    </message>
    <message>
        <source>第一個圖樣前的 %1 毫秒空白會被略過</source>
        <translation>the first %1 ms before the first pattern are left out</translation>
    </message>
    <message>
        <source>第一個圖樣比起點標記早 %1 毫秒開始</source>
        <translation>the first pattern begins %1 ms before the start mark</translation>
    </message>
    <message>
        <source>兩個圖樣重疊 %1 毫秒：之後的都會延後</source>
        <translation>two patterns overlap by %1 ms: everything behind comes later</translation>
    </message>
    <message>
        <source>%1 毫秒的空白會被略過：之後的都會提前</source>
        <translation>a gap of %1 ms is left out: everything behind comes earlier</translation>
    </message>
    <message>
        <source>短於 %1 毫秒的單色不會顯示</source>
        <translation>a colour of less than %1 ms is not shown</translation>
    </message>
    <message>
        <source>圖樣太短，連一行都分不到，不會顯示</source>
        <translation>the pattern is too short to get a column and is not shown</translation>
    </message>
    <message>
        <source>共 %1 段，道具最多只能數到 %2 段</source>
        <translation>%1 entries: the prop's header counts at most %2</translation>
    </message>
    <message>
        <source>光舞的目錄有 %1 位元組，道具只讀 %2 位元組</source>
        <translation>the header takes %1 bytes, the prop reads %2</translation>
    </message>
    <message>
        <source>・驅動程式：道具須在裝置管理員中以 COM 埠出現，否則安裝驅動程式。</source>
        <translation>• Driver: the prop must show as a COM port in the device manager, else install its driver.</translation>
    </message>
    <message>
        <source>・權限：帳號須屬於群組 dialout（sudo adduser $USER dialout，再重新登入）。
・ModemManager：插上後數秒內會占住連接埠，稍候再試。</source>
        <translation>• Permission: your account must be in the group dialout (sudo adduser $USER dialout, then log in again).
• ModemManager: it holds the port for some seconds after plugging in; wait and try again.</translation>
    </message>
    <message>
        <source>・傳輸線：改用能傳資料的線，重新插上道具，打開電源並等它開機。
・其他程式：連接埠一次只能給一個程式用，請關閉其他序列埠程式。</source>
        <translation>• Cable: use one that carries data, plug the prop in again, switch it on and wait until it has started.
• Another program: only one can hold the port; close other serial programs.</translation>
    </message>
    <message>
        <source>・連接埠打得開，但沒有道具說話：重新插上道具，等它開機後再試。
・拔除其他序列裝置，每個不說話的連接埠要等 5 秒。</source>
        <translation>• A port opens, but no prop speaks: plug the prop in again, wait until it has started, try again.
• Unplug other serial devices; each silent port costs 5 seconds.</translation>
    </message>
    <message>
        <source>・暫存檔 extemp.tmp 與 extemp2.tmp 寫不進工作資料夾 %1。
・磁碟已滿：騰出空間。沒有寫入權限：從可寫入的資料夾啟動程式。</source>
        <translation>• The temporary files extemp.tmp and extemp2.tmp cannot be written to the working folder %1.
• Disk full: make room. No permission: start the program in a folder that you can write to.</translation>
    </message>
    <message>
        <source>・裝置打了招呼，卻沒有回應上傳：重新插上道具再試。
・其他程式（例如剛插上時的 ModemManager）可能也在讀這個連接埠。
・它可能不是道具：拔除其他序列裝置。</source>
        <translation>• The device greeted but did not answer the upload: plug the prop in again and retry.
• Another program (such as ModemManager just after plugging in) may be reading the same port.
• It may be no prop: unplug other serial devices.</translation>
    </message>
    <message>
        <source>・道具拒收這個光舞：在「輸出至」改選其他軌道。
・記憶體可能已滿：「其他 → 清除記憶體」清除後再上傳。
・重新啟動道具再試。</source>
        <translation>• The prop refused the show: choose another track of the prop beside the progress bar.
• Its memory may be full: setting → wipe memory, then upload again.
• Restart the prop and retry.</translation>
    </message>
    <message>
        <source>・傳輸中斷線：檢查傳輸線，重新插上道具再上傳。</source>
        <translation>• The connection broke: check the cable, plug the prop in again and upload once more.</translation>
    </message>
    <message>
        <source>・道具沒有確認已清除：重新插上道具，等它開機後再試。
・其他程式可能占用連接埠：請關閉。</source>
        <translation>• The prop has not confirmed the wipe: plug it in again, wait until it has started, try again.
• Another program may hold the port: close it.</translation>
    </message>
    <message>
        <source>找不到歌曲：%1</source>
        <translation>The song is gone: %1</translation>
    </message>
</context>
<context>
    <name>Film</name>
    <message>
        <source>%1：檔名須以 .mp4、.webm、.gif 或 .png 結尾</source>
        <translation>%1: the name must end in .mp4, .webm, .gif or .png</translation>
    </message>
    <message>
        <source>畫面的寬與高須為 %1 到 %2 的偶數</source>
        <translation>width and height must be even numbers from %1 to %2</translation>
    </message>
    <message>
        <source>每秒畫面數須為 1 到 %1</source>
        <translation>frames a second must be from 1 to %1</translation>
    </message>
    <message>
        <source>.gif 每秒最多 %1 個畫面</source>
        <translation>a .gif has at most %1 frames a second</translation>
    </message>
    <message>
        <source>沒有軌道 %1</source>
        <translation>there is no track %1</translation>
    </message>
    <message>
        <source>軌道 %1 沒有圖樣</source>
        <translation>track %1 holds no pattern</translation>
    </message>
    <message>
        <source>所有軌道都沒有圖樣</source>
        <translation>no track holds a pattern</translation>
    </message>
    <message>
        <source>道具的 LED 數為 0</source>
        <translation>the prop has no LEDs</translation>
    </message>
    <message>
        <source>畫面太小，放不下所有軌道</source>
        <translation>the frame is too small for all the tracks</translation>
    </message>
    <message>
        <source>影片的開始須早於結束 %1</source>
        <translation>the film must begin before its end at %1</translation>
    </message>
    <message>
        <source>影片的開始須早於光舞的結束 %1</source>
        <translation>the film must begin before the show ends at %1</translation>
    </message>
    <message>
        <source>影片長 %1，最多為 %2 分鐘，請選擇其中一段</source>
        <translation>the film would last %1, and %2 minutes at most are made: choose a part of the show</translation>
    </message>
    <message>
        <source>影片長 %1，.gif 最多為 %2 秒，請選擇其中一段</source>
        <translation>the film would last %1, and a .gif has at most %2 seconds: choose a part of the show</translation>
    </message>
    <message>
        <source>找不到 ffmpeg，請安裝套件 ffmpeg (sudo apt install ffmpeg)</source>
        <translation>ffmpeg is not there: install the package ffmpeg (sudo apt install ffmpeg)</translation>
    </message>
    <message>
        <source>%1 不是一般檔案</source>
        <translation>%1 is no regular file</translation>
    </message>
    <message>
        <source>無法寫入 %1</source>
        <translation>%1 cannot be written</translation>
    </message>
    <message>
        <source>%1 正由另一個輸出寫入</source>
        <translation>%1 is being written by another export</translation>
    </message>
    <message>
        <source>ffmpeg 未能完成影片，原有檔案未變動
%1</source>
        <translation>ffmpeg did not finish the film, an older file is unchanged
%1</translation>
    </message>
    <message>
        <source>無法寫入影片，原有檔案未變動
%1</source>
        <translation>the film cannot be written, an older file is unchanged
%1</translation>
    </message>
    <message>
        <source>已取消影片輸出</source>
        <translation>the film was cancelled</translation>
    </message>
</context>
<context>
    <name>FilmDialog</name>
    <message>
        <source>輸出影片</source>
        <translation>Export film</translation>
    </message>
    <message>
        <source>影片畫面</source>
        <translation>Frame of the film</translation>
    </message>
    <message>
        <source>影片畫面的時間</source>
        <translation>Time of the frame</translation>
    </message>
    <message>
        <source>軌道</source>
        <translation>Track</translation>
    </message>
    <message>
        <source>畫面大小</source>
        <translation>Size</translation>
    </message>
    <message>
        <source>開始</source>
        <translation>From</translation>
    </message>
    <message>
        <source>結束</source>
        <translation>To</translation>
    </message>
    <message>
        <source>每秒畫面數</source>
        <translation>Frames a second</translation>
    </message>
    <message>
        <source>加入歌曲</source>
        <translation>With the song</translation>
    </message>
    <message>
        <source>顯示時間</source>
        <translation>Show the time</translation>
    </message>
    <message>
        <source>輸出...</source>
        <translation>Export...</translation>
    </message>
    <message>
        <source>取消</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>全部</source>
        <translation>All</translation>
    </message>
    <message>
        <source>找不到歌曲 %1
要輸出沒有聲音的影片嗎？</source>
        <translation>The song %1 is gone.
Make a film without sound?</translation>
    </message>
    <message>
        <source>無法讀取歌曲 %1
要輸出沒有聲音的影片嗎？</source>
        <translation>The song %1 cannot be read.
Make a film without sound?</translation>
    </message>
    <message>
        <source>%1 已存在，是否取代？</source>
        <translation>%1 exists. Replace it?</translation>
    </message>
    <message>
        <source>輸出中，剩餘 %1</source>
        <translation>Exporting, %1 left</translation>
    </message>
    <message>
        <source>即將完成</source>
        <translation>Nearly done</translation>
    </message>
    <message>
        <source>影片已完成：%1</source>
        <translation>The film is done: %1</translation>
    </message>
</context>
</TS>
