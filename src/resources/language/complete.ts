<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="zh_TW">
<context>
    <name>MainWindow</name>
    <message>
        <source>模擬道具</source>
        <translation>simulated prop</translation>
    </message>
    <message>
        <source>靜止</source>
        <translation>still</translation>
    </message>
    <message>
        <source>旋轉速度</source>
        <translation>spinning speed</translation>
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
        <translation>play time</translation>
    </message>
    <message>
        <source>播放位置</source>
        <translation>play position</translation>
    </message>
    <message>
        <source>時間軸長度</source>
        <translation>length of the timeline</translation>
    </message>
    <message>
        <source>軌道編號</source>
        <translation>track number</translation>
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
        <source>圖樣數：0</source>
        <translation>modes:0</translation>
    </message>
    <message>
        <source>輸出至</source>
        <translation>output to</translation>
    </message>
    <message>
        <source>圖樣循環</source>
        <translation>repeat the show</translation>
    </message>
    <message>
        <source>輸出進度</source>
        <translation>progress of the output</translation>
    </message>
    <message>
        <source>每秒行數</source>
        <translation>columns a second</translation>
    </message>
    <message>
        <source>燈數</source>
        <translation>LEDs</translation>
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
        <translation>picture preview</translation>
    </message>
    <message>
        <source>單色紅</source>
        <translation>colour red</translation>
    </message>
    <message>
        <source>單色綠</source>
        <translation>colour green</translation>
    </message>
    <message>
        <source>單色藍</source>
        <translation>colour blue</translation>
    </message>
    <message>
        <source>調色盤</source>
        <translation>colours</translation>
    </message>
    <message>
        <source>文字...</source>
        <translation>text...</translation>
    </message>
    <message>
        <source>字型</source>
        <translation>font</translation>
    </message>
    <message>
        <source>字高</source>
        <translation>height</translation>
    </message>
    <message>
        <source>字寬</source>
        <translation>width</translation>
    </message>
    <message>
        <source>反轉顏色</source>
        <translation>invert</translation>
    </message>
    <message>
        <source>文字紅</source>
        <translation>text red</translation>
    </message>
    <message>
        <source>文字綠</source>
        <translation>text green</translation>
    </message>
    <message>
        <source>文字藍</source>
        <translation>text blue</translation>
    </message>
    <message>
        <source>文字預覽</source>
        <translation>text preview</translation>
    </message>
    <message>
        <source>圖騰</source>
        <translation>Effect</translation>
    </message>
    <message>
        <source>前景色</source>
        <translation>Front</translation>
    </message>
    <message>
        <source>圖騰紅</source>
        <translation>effect red</translation>
    </message>
    <message>
        <source>圖騰綠</source>
        <translation>effect green</translation>
    </message>
    <message>
        <source>圖騰藍</source>
        <translation>effect blue</translation>
    </message>
    <message>
        <source>隨機</source>
        <translation>random</translation>
    </message>
    <message>
        <source>圖騰預覽</source>
        <translation>effect preview</translation>
    </message>
    <message>
        <source>靜態1</source>
        <translation>static 1</translation>
    </message>
    <message>
        <source>靜態2</source>
        <translation>static 2</translation>
    </message>
    <message>
        <source>靜態3</source>
        <translation>static 3</translation>
    </message>
    <message>
        <source>靜態4</source>
        <translation>static 4</translation>
    </message>
    <message>
        <source>次 </source>
        <translation>times </translation>
    </message>
    <message>
        <source>自動計算次數</source>
        <translation>count automatically</translation>
    </message>
    <message>
        <source>慢</source>
        <translation>slow</translation>
    </message>
    <message>
        <source>速度</source>
        <translation>speed</translation>
    </message>
    <message>
        <source>快</source>
        <translation>fast</translation>
    </message>
    <message>
        <source>開始時間</source>
        <translation>start</translation>
    </message>
    <message>
        <source>長度</source>
        <translation>length</translation>
    </message>
    <message>
        <source>結束時間</source>
        <translation>end</translation>
    </message>
    <message>
        <source>開新檔案</source>
        <translation>New</translation>
    </message>
    <message>
        <source>讀檔...</source>
        <translation>Load...</translation>
    </message>
    <message>
        <source>存檔...</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>另存新檔...</source>
        <translation>Save as...</translation>
    </message>
    <message>
        <source>將用到的圖片匯出至單一資料夾</source>
        <translation>Copy all pictures in use into one folder</translation>
    </message>
    <message>
        <source>複製</source>
        <translation>Copy</translation>
    </message>
    <message>
        <source>貼上</source>
        <translation>Paste</translation>
    </message>
    <message>
        <source>偏好設定...</source>
        <translation>Preferences...</translation>
    </message>
    <message>
        <source>新增/確認</source>
        <translation>Add/Confirm</translation>
    </message>
    <message>
        <source>關於...</source>
        <translation>About...</translation>
    </message>
    <message>
        <source>繁體中文</source>
        <translation>Chinese (Traditional)</translation>
    </message>
    <message>
        <source>&lt;font color='white'&gt;關閉前儲存？&lt;/font&gt;</source>
        <translation>&lt;font color='white'&gt;Save before closing?&lt;/font&gt;</translation>
    </message>
    <message>
        <source>&lt;font color='white'&gt;未儲存部分將會流失，確定讀取舊檔?&lt;/font&gt;</source>
        <translation>&lt;font color='white'&gt;What is not saved will be lost. Load anyway?&lt;/font&gt;</translation>
    </message>
    <message>
        <source>無法辨識的副檔名 .</source>
        <translation>Unknown file extension .</translation>
    </message>
    <message>
        <source>無法讀取</source>
        <translation>Cannot read </translation>
    </message>
    <message>
        <source>轉檔中...</source>
        <translation>Converting...</translation>
    </message>
    <message>
        <source> 輸出中 </source>
        <translation> exporting </translation>
    </message>
    <message>
        <source>圖片遺失</source>
        <translation>Picture missing</translation>
    </message>
    <message>
        <source>張圖片遺失，是否搜尋並取代遺失圖片？</source>
        <translation> pictures are missing. Search for them and replace them?</translation>
    </message>
    <message>
        <source>圖片遺失，是否替換遺失圖片？</source>
        <translation>The picture is missing. Replace it?</translation>
    </message>
    <message>
        <source>取代圖片</source>
        <translation>Replace picture</translation>
    </message>
    <message>
        <source>圖片尺寸過大，無法使用：</source>
        <translation>The picture is too large to be used: </translation>
    </message>
    <message>
        <source>文字過長，無法顯示</source>
        <translation>The text is too long to be shown</translation>
    </message>
    <message>
        <source>無法解碼，請確認已安裝正確音訊解碼包</source>
        <translation>Cannot decode it. Please check that the right audio decoders are installed.</translation>
    </message>
    <message>
        <source>錯誤</source>
        <translation>Error</translation>
    </message>
    <message>
        <source>確認移除軌道？</source>
        <translation>Remove the track?</translation>
    </message>
    <message>
        <source>&lt;font color='white'&gt;此動作無法復原&lt;/font&gt;</source>
        <translation>&lt;font color='white'&gt;This cannot be undone&lt;/font&gt;</translation>
    </message>
</context>
<context>
    <name>Pass</name>
    <message>
        <source>後台密碼</source>
        <translation>Terminal password</translation>
    </message>
    <message>
        <source>密碼</source>
        <translation>Password</translation>
    </message>
    <message>
        <source>密碼錯誤</source>
        <translation>Wrong password</translation>
    </message>
</context>
<context>
    <name>ScreenCapture</name>
    <message>
        <source>截取</source>
        <translation>Capture</translation>
    </message>
    <message>
        <source>畫筆</source>
        <translation>Brush</translation>
    </message>
    <message>
        <source>橡皮擦</source>
        <translation>Eraser</translation>
    </message>
    <message>
        <source>清除</source>
        <translation>Clear</translation>
    </message>
    <message>
        <source>畫筆大小</source>
        <translation>size of the brush</translation>
    </message>
</context>
<context>
    <name>Timeline</name>
    <message>
        <source>複製時間軸</source>
        <translation>Duplicate track</translation>
    </message>
    <message>
        <source>移除時間軸</source>
        <translation>Remove track</translation>
    </message>
    <message>
        <source>長度: </source>
        <translation>Length: </translation>
    </message>
</context>
<context>
    <name>TimelineHeaders</name>
    <message>
        <source>時間軸</source>
        <translation>timeline</translation>
    </message>
    <message>
        <source>設定起始</source>
        <translation>Set start</translation>
    </message>
    <message>
        <source>取消起始</source>
        <translation>Clear start</translation>
    </message>
</context>
<context>
    <name>TimelineItem</name>
    <message>
        <source>長度: </source>
        <translation>Length: </translation>
    </message>
</context>
<context>
    <name>about</name>
    <message>
        <source>開啟舊檔...</source>
        <translation>Open...</translation>
    </message>
    <message>
        <source>生產經銷</source>
        <translation>Made and sold by</translation>
    </message>
    <message>
        <source>研發設計</source>
        <translation>Designed by</translation>
    </message>
</context>
<context>
    <name>setup</name>
    <message>
        <source>AS:切換燈種 AT:系統資訊 A0:全速測試模式 AP#:啟動第#軌</source>
        <translation>AS: kind of LED  AT: system information  A0: full-speed test  AP#: play track #</translation>
    </message>
    <message>
        <source>裝置訊息</source>
        <translation>messages of the device</translation>
    </message>
    <message>
        <source>指令</source>
        <translation>command</translation>
    </message>
    <message>
        <source>自動捲動</source>
        <translation>Scroll along</translation>
    </message>
    <message>
        <source>連線中...</source>
        <translation>Connecting...</translation>
    </message>
    <message>
        <source>連接成功</source>
        <translation>Connected</translation>
    </message>
    <message>
        <source>偵測不到裝置！</source>
        <translation>No device detected!</translation>
    </message>
</context>
</TS>
