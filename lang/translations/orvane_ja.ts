<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP">
<context>
    <name>COrvaneWinApp</name>
    <message>
        <source>Orvane X is already running.</source>
        <translation>Orvane X はすでに起動しています。</translation>
    </message>
    <message>
        <source>No display found: running in console mode.</source>
        <translation>ディスプレイが見つかりません。コンソールモードで起動します。</translation>
    </message>
    <message>
        <source>Orvane X %1 running with the demo sensor. Ctrl-C quits.</source>
        <translation>Orvane X %1 をデモセンサーで実行中です。Ctrl-C で終了します。</translation>
    </message>
    <message>
        <source>Orvane X %1 running. Ctrl-C quits.</source>
        <translation>Orvane X %1 を実行中です。Ctrl-C で終了します。</translation>
    </message>
    <message>
        <source>Shutting down.</source>
        <translation>終了しています。</translation>
    </message>
</context>
<context>
    <name>ClubName</name>
    <message>
        <source>Driver</source>
        <translation>ドライバー</translation>
    </message>
    <message>
        <source>3 Wood</source>
        <translation>3番ウッド</translation>
    </message>
    <message>
        <source>5 Wood</source>
        <translation>5番ウッド</translation>
    </message>
    <message>
        <source>7 Wood</source>
        <translation>7番ウッド</translation>
    </message>
    <message>
        <source>4 Hybrid</source>
        <translation>4番ユーティリティ</translation>
    </message>
    <message>
        <source>3 Iron</source>
        <translation>3番アイアン</translation>
    </message>
    <message>
        <source>4 Iron</source>
        <translation>4番アイアン</translation>
    </message>
    <message>
        <source>5 Iron</source>
        <translation>5番アイアン</translation>
    </message>
    <message>
        <source>6 Iron</source>
        <translation>6番アイアン</translation>
    </message>
    <message>
        <source>7 Iron</source>
        <translation>7番アイアン</translation>
    </message>
    <message>
        <source>8 Iron</source>
        <translation>8番アイアン</translation>
    </message>
    <message>
        <source>9 Iron</source>
        <translation>9番アイアン</translation>
    </message>
    <message>
        <source>Pitching Wedge</source>
        <translation>ピッチングウェッジ</translation>
    </message>
    <message>
        <source>Gap Wedge</source>
        <translation>アプローチウェッジ</translation>
    </message>
    <message>
        <source>Sand Wedge</source>
        <translation>サンドウェッジ</translation>
    </message>
    <message>
        <source>Lob Wedge</source>
        <translation>ロブウェッジ</translation>
    </message>
    <message>
        <source>Putter</source>
        <translation>パター</translation>
    </message>
    <message>
        <source>Club %1</source>
        <translation>クラブ %1</translation>
    </message>
</context>
<context>
    <name>ConsoleReporter</name>
    <message>
        <source>Simulator: connected</source>
        <translation>シミュレーター: 接続済み</translation>
    </message>
    <message>
        <source>Simulator: disconnected</source>
        <translation>シミュレーター: 未接続</translation>
    </message>
    <message>
        <source>Sensor: disconnected</source>
        <translation>センサー: 未接続</translation>
    </message>
    <message>
        <source>Sensor: searching</source>
        <translation>センサー: 検索中</translation>
    </message>
    <message>
        <source>Sensor: connecting</source>
        <translation>センサー: 接続中</translation>
    </message>
    <message>
        <source>Sensor: connected, firmware %1</source>
        <translation>センサー: 接続済み、ファームウェア %1</translation>
    </message>
    <message>
        <source>Sensor battery: %1</source>
        <translation>センサーのバッテリー: %1</translation>
    </message>
    <message>
        <source>Shot %1: %2</source>
        <translation>ショット %1: %2</translation>
    </message>
</context>
<context>
    <name>OrvaneWinUI::ClubPicker</name>
    <message>
        <source>CLUB</source>
        <translation>クラブ</translation>
    </message>
</context>
<context>
    <name>OrvaneWinUI::OrvaneUIControl</name>
    <message>
        <source>Swing sensor for E6</source>
        <translation>E6用スイングセンサー</translation>
    </message>
    <message>
        <source>E6 SIMULATOR</source>
        <translation>E6 シミュレーター</translation>
    </message>
    <message>
        <source>Disconnected</source>
        <translation>未接続</translation>
    </message>
    <message>
        <source>SENSOR</source>
        <translation>センサー</translation>
    </message>
    <message>
        <source>BATTERY</source>
        <translation>バッテリー</translation>
    </message>
    <message>
        <source>FIRMWARE</source>
        <translation>ファームウェア</translation>
    </message>
    <message>
        <source>Swing level</source>
        <translation>スイングレベル</translation>
    </message>
    <message>
        <source>Easy</source>
        <translation>イージー</translation>
    </message>
    <message>
        <source>Normal</source>
        <comment>swing level</comment>
        <translation>ノーマル</translation>
    </message>
    <message>
        <source>Pro</source>
        <translation>プロ</translation>
    </message>
    <message>
        <source>Swing sensitivity</source>
        <translation>スイング感度</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>低</translation>
    </message>
    <message>
        <source>Normal</source>
        <comment>sensitivity</comment>
        <translation>標準</translation>
    </message>
    <message>
        <source>High</source>
        <translation>高</translation>
    </message>
    <message>
        <source>Club type</source>
        <translation>クラブの種類</translation>
    </message>
    <message>
        <source>Swing stick</source>
        <translation>スイングスティック</translation>
    </message>
    <message>
        <source>Real club</source>
        <translation>実際のクラブ</translation>
    </message>
    <message>
        <source>Sound effects</source>
        <translation>効果音</translation>
    </message>
    <message>
        <source>On</source>
        <translation>オン</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>オフ</translation>
    </message>
    <message>
        <source>Camera preview</source>
        <translation>カメラプレビュー</translation>
    </message>
    <message>
        <source>Swing recording</source>
        <translation>スイング録画</translation>
    </message>
    <message>
        <source>Show shot result</source>
        <translation>ショット結果の表示</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>表示する</translation>
    </message>
    <message>
        <source>No</source>
        <translation>表示しない</translation>
    </message>
    <message>
        <source>User guide</source>
        <translation>ユーザーガイド</translation>
    </message>
    <message>
        <source>Support</source>
        <translation>サポート</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Start E6</source>
        <translation>E6を起動</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>終了</translation>
    </message>
    <message>
        <source>History</source>
        <translation>履歴</translation>
    </message>
    <message>
        <source>SIMULATOR COMPUTER</source>
        <translation>シミュレーター用パソコン</translation>
    </message>
    <message>
        <source>This computer</source>
        <translation>このコンピューター</translation>
    </message>
    <message>
        <source>Host name or IPv4 address of the computer running E6</source>
        <translation>E6 を実行しているコンピューターのホスト名または IPv4 アドレス</translation>
    </message>
</context>
<context>
    <name>OrvaneWinUI::ShotPanel</name>
    <message>
        <source>BALL SPEED</source>
        <translation>ボール初速</translation>
    </message>
    <message>
        <source>LAUNCH</source>
        <translation>打ち出し角</translation>
    </message>
    <message>
        <source>DIRECTION</source>
        <translation>打ち出し方向</translation>
    </message>
    <message>
        <source>BACK SPIN</source>
        <translation>バックスピン</translation>
    </message>
    <message>
        <source>SIDE SPIN</source>
        <translation>サイドスピン</translation>
    </message>
    <message>
        <source>HEAD SPEED</source>
        <translation>ヘッドスピード</translation>
    </message>
    <message>
        <source>LAST SHOT</source>
        <translation>前回のショット</translation>
    </message>
    <message>
        <source>L %1</source>
        <translation>左 %1</translation>
    </message>
    <message>
        <source>R %1</source>
        <translation>右 %1</translation>
    </message>
</context>
<context>
    <name>OrvaneWinUI::WaitingOverlay</name>
    <message>
        <source>Please wait...</source>
        <translation>お待ちください…</translation>
    </message>
</context>
<context>
    <name>PlayerWnd</name>
    <message>
        <source>Swing replay</source>
        <translation>スイング再生</translation>
    </message>
</context>
<context>
    <name>PreviewWnd</name>
    <message>
        <source>Camera preview</source>
        <translation>カメラプレビュー</translation>
    </message>
</context>
<context>
    <name>SessionSummary</name>
    <message>
        <source>Session: no shots</source>
        <translation>セッション: ショットなし</translation>
    </message>
    <message>
        <source>%1 1 shot</source>
        <translation>%1 1ショット</translation>
    </message>
    <message>
        <source>%1 %2 shots</source>
        <translation>%1 %2ショット</translation>
    </message>
    <message>
        <source>%1, ball speed %2 ± %3, launch %4, direction %5, back spin %6, side spin %7, head speed %8</source>
        <translation>%1、ボール初速 %2 ± %3、打ち出し角 %4、打ち出し方向 %5、バックスピン %6、サイドスピン %7、ヘッドスピード %8</translation>
    </message>
    <message>
        <source>Session: %1</source>
        <translation>セッション: %1</translation>
    </message>
</context>
<context>
    <name>ShotLine</name>
    <message>
        <source>%1: ball speed %2, launch %3, direction %4, back spin %5, side spin %6, head speed %7</source>
        <translation>%1: ボール初速 %2、打ち出し角 %3、打ち出し方向 %4、バックスピン %5、サイドスピン %6、ヘッドスピード %7</translation>
    </message>
</context>
<context>
    <name>ShotOutcome</name>
    <message>
        <source>Shot not sent: no simulator connected</source>
        <translation>ショット未送信: シミュレーターが接続されていません</translation>
    </message>
    <message>
        <source>Shot not sent: the simulator did not log us in</source>
        <translation>ショット未送信: シミュレーターにログインできませんでした</translation>
    </message>
    <message>
        <source>Shot not sent: the simulator link failed</source>
        <translation>ショット未送信: シミュレーターとの通信に失敗しました</translation>
    </message>
    <message>
        <source>Shot not sent: the simulator named no known club</source>
        <translation>ショット未送信: シミュレーターが不明なクラブを指定しました</translation>
    </message>
</context>
<context>
    <name>StartupOptions</name>
    <message>
        <source>Usage: OrvaneWin [-demo] [-console] [-debug] [-debug_packet] [-debug_file]
Delivers the swings of an Orvane X sensor to the E6 golf simulator.

  -demo          an in-process demo sensor that swings by itself
  -console       no window: states and one line per shot on standard output
  -debug         log lines on standard output
  -debug_packet  sensor frames and simulator messages on standard output
  -debug_file    with -debug or -debug_packet: the log goes to log.txt
  -h, --help     this text
  --version      the program&apos;s version

Settings: $XDG_CONFIG_HOME/Orvane X/settings.ini (section [E6], key Host:
the computer running the simulator; empty for this computer).
</source>
        <translation>使い方: OrvaneWin [-demo] [-console] [-debug] [-debug_packet] [-debug_file]
Orvane X センサーのスイングを E6 ゴルフシミュレーターに送ります。

  -demo          ひとりでにスイングする内蔵のデモ用センサー
  -console       ウィンドウなし: 状態とショットごとの1行を標準出力に表示
  -debug         ログを標準出力に表示
  -debug_packet  センサーのフレームとシミュレーターのメッセージを標準出力に表示
  -debug_file    -debug または -debug_packet と併用: ログを log.txt に書き込む
  -h, --help     このヘルプ
  --version      プログラムのバージョン

設定: $XDG_CONFIG_HOME/Orvane X/settings.ini ([E6] セクションの Host キー:
シミュレーターを実行しているコンピューター。このコンピューターなら空欄)。
</translation>
    </message>
</context>
<context>
    <name>orv::CMainDlg</name>
    <message>
        <source>Shot not sent: the simulator named no known club</source>
        <translation>ショット未送信: シミュレーターが不明なクラブを指定しました</translation>
    </message>
</context>
<context>
    <name>orv::HistoryDialog</name>
    <message>
        <source>sent</source>
        <translation>送信済み</translation>
    </message>
    <message>
        <source>Shot history</source>
        <translation>ショット履歴</translation>
    </message>
    <message>
        <source>All clubs</source>
        <translation>すべてのクラブ</translation>
    </message>
    <message>
        <source>Club</source>
        <translation>クラブ</translation>
    </message>
    <message>
        <source>From</source>
        <translation>開始日</translation>
    </message>
    <message>
        <source>To</source>
        <translation>終了日</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>日時</translation>
    </message>
    <message>
        <source>Ball speed</source>
        <translation>ボール初速</translation>
    </message>
    <message>
        <source>Launch</source>
        <translation>打ち出し角</translation>
    </message>
    <message>
        <source>Direction</source>
        <translation>打ち出し方向</translation>
    </message>
    <message>
        <source>Back spin</source>
        <translation>バックスピン</translation>
    </message>
    <message>
        <source>Side spin</source>
        <translation>サイドスピン</translation>
    </message>
    <message>
        <source>Head speed</source>
        <translation>ヘッドスピード</translation>
    </message>
    <message>
        <source>Shot</source>
        <translation>ショット</translation>
    </message>
    <message>
        <source>Clip</source>
        <translation>動画</translation>
    </message>
    <message>
        <source>Shots</source>
        <translation>ショット一覧</translation>
    </message>
    <message>
        <source>Shot shape: launch direction against side spin</source>
        <translation>球筋: 打ち出し方向とサイドスピン</translation>
    </message>
    <message>
        <source>Ball speed over the session</source>
        <translation>セッション中のボール初速の推移</translation>
    </message>
    <message>
        <source>Per club</source>
        <translation>クラブ別</translation>
    </message>
    <message>
        <source>Shot shape</source>
        <translation>球筋</translation>
    </message>
    <message>
        <source>Replay clip</source>
        <translation>動画を再生</translation>
    </message>
    <message>
        <source>Export selected…</source>
        <translation>選択したショットを書き出す…</translation>
    </message>
    <message>
        <source>Export all…</source>
        <translation>すべて書き出す…</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>閉じる</translation>
    </message>
    <message>
        <source>gone</source>
        <translation>削除済み</translation>
    </message>
    <message>
        <source>Side spin (rpm)</source>
        <translation>サイドスピン (rpm)</translation>
    </message>
    <message>
        <source>Launch direction (deg)</source>
        <translation>打ち出し方向 (°)</translation>
    </message>
    <message>
        <source>Ball speed (mph)</source>
        <translation>ボール初速 (mph)</translation>
    </message>
    <message>
        <source>Export shots</source>
        <translation>ショットを書き出す</translation>
    </message>
    <message>
        <source>CSV files (*.csv)</source>
        <translation>CSV ファイル (*.csv)</translation>
    </message>
    <message>
        <source>The file could not be written.</source>
        <translation>ファイルを書き込めませんでした。</translation>
    </message>
</context>
</TS>
