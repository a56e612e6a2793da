<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN">
<context>
    <name>COrvaneWinApp</name>
    <message>
        <source>Orvane X is already running.</source>
        <translation>Orvane X 已在运行。</translation>
    </message>
    <message>
        <source>No display found: running in console mode.</source>
        <translation>未找到显示器：以控制台模式运行。</translation>
    </message>
    <message>
        <source>Orvane X %1 running with the demo sensor. Ctrl-C quits.</source>
        <translation>Orvane X %1 正在使用演示传感器运行。按 Ctrl-C 退出。</translation>
    </message>
    <message>
        <source>Orvane X %1 running. Ctrl-C quits.</source>
        <translation>Orvane X %1 正在运行。按 Ctrl-C 退出。</translation>
    </message>
    <message>
        <source>Shutting down.</source>
        <translation>正在关闭。</translation>
    </message>
</context>
<context>
    <name>ClubName</name>
    <message>
        <source>Driver</source>
        <translation>一号木</translation>
    </message>
    <message>
        <source>3 Wood</source>
        <translation>3号木</translation>
    </message>
    <message>
        <source>5 Wood</source>
        <translation>5号木</translation>
    </message>
    <message>
        <source>7 Wood</source>
        <translation>7号木</translation>
    </message>
    <message>
        <source>4 Hybrid</source>
        <translation>4号铁木杆</translation>
    </message>
    <message>
        <source>3 Iron</source>
        <translation>3号铁</translation>
    </message>
    <message>
        <source>4 Iron</source>
        <translation>4号铁</translation>
    </message>
    <message>
        <source>5 Iron</source>
        <translation>5号铁</translation>
    </message>
    <message>
        <source>6 Iron</source>
        <translation>6号铁</translation>
    </message>
    <message>
        <source>7 Iron</source>
        <translation>7号铁</translation>
    </message>
    <message>
        <source>8 Iron</source>
        <translation>8号铁</translation>
    </message>
    <message>
        <source>9 Iron</source>
        <translation>9号铁</translation>
    </message>
    <message>
        <source>Pitching Wedge</source>
        <translation>劈起杆</translation>
    </message>
    <message>
        <source>Gap Wedge</source>
        <translation>间隙挖起杆</translation>
    </message>
    <message>
        <source>Sand Wedge</source>
        <translation>沙坑杆</translation>
    </message>
    <message>
        <source>Lob Wedge</source>
        <translation>高抛杆</translation>
    </message>
    <message>
        <source>Putter</source>
        <translation>推杆</translation>
    </message>
    <message>
        <source>Club %1</source>
        <translation>球杆 %1</translation>
    </message>
</context>
<context>
    <name>ConsoleReporter</name>
    <message>
        <source>Simulator: connected</source>
        <translation>模拟器：已连接</translation>
    </message>
    <message>
        <source>Simulator: disconnected</source>
        <translation>模拟器：未连接</translation>
    </message>
    <message>
        <source>Sensor: disconnected</source>
        <translation>传感器：未连接</translation>
    </message>
    <message>
        <source>Sensor: searching</source>
        <translation>传感器：正在搜索</translation>
    </message>
    <message>
        <source>Sensor: connecting</source>
        <translation>传感器：正在连接</translation>
    </message>
    <message>
        <source>Sensor: connected, firmware %1</source>
        <translation>传感器：已连接，固件 %1</translation>
    </message>
    <message>
        <source>Sensor battery: %1</source>
        <translation>传感器电量：%1</translation>
    </message>
    <message>
        <source>Shot %1: %2</source>
        <translation>第 %1 杆：%2</translation>
    </message>
</context>
<context>
    <name>OrvaneWinUI::ClubPicker</name>
    <message>
        <source>CLUB</source>
        <translation>球杆</translation>
    </message>
</context>
<context>
    <name>OrvaneWinUI::OrvaneUIControl</name>
    <message>
        <source>Swing sensor for E6</source>
        <translation>E6 挥杆传感器</translation>
    </message>
    <message>
        <source>E6 SIMULATOR</source>
        <translation>E6 模拟器</translation>
    </message>
    <message>
        <source>Disconnected</source>
        <translation>未连接</translation>
    </message>
    <message>
        <source>SENSOR</source>
        <translation>传感器</translation>
    </message>
    <message>
        <source>BATTERY</source>
        <translation>电量</translation>
    </message>
    <message>
        <source>FIRMWARE</source>
        <translation>固件</translation>
    </message>
    <message>
        <source>Swing level</source>
        <translation>挥杆级别</translation>
    </message>
    <message>
        <source>Easy</source>
        <translation>简单</translation>
    </message>
    <message>
        <source>Normal</source>
        <comment>swing level</comment>
        <translation>普通</translation>
    </message>
    <message>
        <source>Pro</source>
        <translation>专业</translation>
    </message>
    <message>
        <source>Swing sensitivity</source>
        <translation>挥杆灵敏度</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>低</translation>
    </message>
    <message>
        <source>Normal</source>
        <comment>sensitivity</comment>
        <translation>中</translation>
    </message>
    <message>
        <source>High</source>
        <translation>高</translation>
    </message>
    <message>
        <source>Club type</source>
        <translation>球杆类型</translation>
    </message>
    <message>
        <source>Swing stick</source>
        <translation>挥杆棒</translation>
    </message>
    <message>
        <source>Real club</source>
        <translation>真实球杆</translation>
    </message>
    <message>
        <source>Sound effects</source>
        <translation>音效</translation>
    </message>
    <message>
        <source>On</source>
        <translation>开</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>关</translation>
    </message>
    <message>
        <source>Camera preview</source>
        <translation>摄像头预览</translation>
    </message>
    <message>
        <source>Swing recording</source>
        <translation>挥杆录像</translation>
    </message>
    <message>
        <source>Show shot result</source>
        <translation>显示击球结果</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>显示</translation>
    </message>
    <message>
        <source>No</source>
        <translation>不显示</translation>
    </message>
    <message>
        <source>User guide</source>
        <translation>用户指南</translation>
    </message>
    <message>
        <source>Support</source>
        <translation>技术支持</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Start E6</source>
        <translation>启动 E6</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>退出</translation>
    </message>
    <message>
        <source>History</source>
        <translation>历史记录</translation>
    </message>
    <message>
        <source>SIMULATOR COMPUTER</source>
        <translation>模拟器电脑</translation>
    </message>
    <message>
        <source>This computer</source>
        <translation>本机</translation>
    </message>
    <message>
        <source>Host name or IPv4 address of the computer running E6</source>
        <translation>运行 E6 的计算机的主机名或 IPv4 地址</translation>
    </message>
</context>
<context>
    <name>OrvaneWinUI::ShotPanel</name>
    <message>
        <source>BALL SPEED</source>
        <translation>球速</translation>
    </message>
    <message>
        <source>LAUNCH</source>
        <translation>起飞角</translation>
    </message>
    <message>
        <source>DIRECTION</source>
        <translation>方向</translation>
    </message>
    <message>
        <source>BACK SPIN</source>
        <translation>后旋</translation>
    </message>
    <message>
        <source>SIDE SPIN</source>
        <translation>侧旋</translation>
    </message>
    <message>
        <source>HEAD SPEED</source>
        <translation>杆头速度</translation>
    </message>
    <message>
        <source>LAST SHOT</source>
        <translation>上一杆</translation>
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
        <translation>请稍候…</translation>
    </message>
</context>
<context>
    <name>PlayerWnd</name>
    <message>
        <source>Swing replay</source>
        <translation>挥杆回放</translation>
    </message>
</context>
<context>
    <name>PreviewWnd</name>
    <message>
        <source>Camera preview</source>
        <translation>摄像头预览</translation>
    </message>
</context>
<context>
    <name>SessionSummary</name>
    <message>
        <source>Session: no shots</source>
        <translation>本次练习：无击球</translation>
    </message>
    <message>
        <source>%1 1 shot</source>
        <translation>%1 1 次击球</translation>
    </message>
    <message>
        <source>%1 %2 shots</source>
        <translation>%1 %2 次击球</translation>
    </message>
    <message>
        <source>%1, ball speed %2 ± %3, launch %4, direction %5, back spin %6, side spin %7, head speed %8</source>
        <translation>%1，球速 %2 ± %3，起飞角 %4，方向 %5，后旋 %6，侧旋 %7，杆头速度 %8</translation>
    </message>
    <message>
        <source>Session: %1</source>
        <translation>本次练习：%1</translation>
    </message>
</context>
<context>
    <name>ShotLine</name>
    <message>
        <source>%1: ball speed %2, launch %3, direction %4, back spin %5, side spin %6, head speed %7</source>
        <translation>%1：球速 %2，起飞角 %3，方向 %4，后旋 %5，侧旋 %6，杆头速度 %7</translation>
    </message>
</context>
<context>
    <name>ShotOutcome</name>
    <message>
        <source>Shot not sent: no simulator connected</source>
        <translation>击球未发送：未连接模拟器</translation>
    </message>
    <message>
        <source>Shot not sent: the simulator did not log us in</source>
        <translation>击球未发送：未能登录模拟器</translation>
    </message>
    <message>
        <source>Shot not sent: the simulator link failed</source>
        <translation>击球未发送：与模拟器的连接失败</translation>
    </message>
    <message>
        <source>Shot not sent: the simulator named no known club</source>
        <translation>击球未发送：模拟器指定了未知球杆</translation>
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
        <translation>用法: OrvaneWin [-demo] [-console] [-debug] [-debug_packet] [-debug_file]
将 Orvane X 传感器的挥杆发送到 E6 高尔夫模拟器。

  -demo          内置的演示传感器，自动挥杆
  -console       不显示窗口：在标准输出上显示状态，每次击球一行
  -debug         在标准输出上显示日志
  -debug_packet  在标准输出上显示传感器数据帧和模拟器消息
  -debug_file    与 -debug 或 -debug_packet 一起使用：日志写入 log.txt
  -h, --help     显示本帮助
  --version      显示程序版本

设置：$XDG_CONFIG_HOME/Orvane X/settings.ini（[E6] 节的 Host 键：
运行模拟器的计算机；本机则留空）。
</translation>
    </message>
</context>
<context>
    <name>orv::CMainDlg</name>
    <message>
        <source>Shot not sent: the simulator named no known club</source>
        <translation>击球未发送：模拟器指定了未知球杆</translation>
    </message>
</context>
<context>
    <name>orv::HistoryDialog</name>
    <message>
        <source>sent</source>
        <translation>已发送</translation>
    </message>
    <message>
        <source>Shot history</source>
        <translation>击球记录</translation>
    </message>
    <message>
        <source>All clubs</source>
        <translation>全部球杆</translation>
    </message>
    <message>
        <source>Club</source>
        <translation>球杆</translation>
    </message>
    <message>
        <source>From</source>
        <translation>起始日期</translation>
    </message>
    <message>
        <source>To</source>
        <translation>结束日期</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>时间</translation>
    </message>
    <message>
        <source>Ball speed</source>
        <translation>球速</translation>
    </message>
    <message>
        <source>Launch</source>
        <translation>起飞角</translation>
    </message>
    <message>
        <source>Direction</source>
        <translation>方向</translation>
    </message>
    <message>
        <source>Back spin</source>
        <translation>后旋</translation>
    </message>
    <message>
        <source>Side spin</source>
        <translation>侧旋</translation>
    </message>
    <message>
        <source>Head speed</source>
        <translation>杆头速度</translation>
    </message>
    <message>
        <source>Shot</source>
        <translation>击球</translation>
    </message>
    <message>
        <source>Clip</source>
        <translation>视频</translation>
    </message>
    <message>
        <source>Shots</source>
        <translation>击球列表</translation>
    </message>
    <message>
        <source>Shot shape: launch direction against side spin</source>
        <translation>球路：起飞方向与侧旋</translation>
    </message>
    <message>
        <source>Ball speed over the session</source>
        <translation>本次练习的球速变化</translation>
    </message>
    <message>
        <source>Per club</source>
        <translation>按球杆</translation>
    </message>
    <message>
        <source>Shot shape</source>
        <translation>球路</translation>
    </message>
    <message>
        <source>Replay clip</source>
        <translation>播放视频</translation>
    </message>
    <message>
        <source>Export selected…</source>
        <translation>导出所选…</translation>
    </message>
    <message>
        <source>Export all…</source>
        <translation>全部导出…</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>gone</source>
        <translation>已删除</translation>
    </message>
    <message>
        <source>Side spin (rpm)</source>
        <translation>侧旋 (rpm)</translation>
    </message>
    <message>
        <source>Launch direction (deg)</source>
        <translation>起飞方向 (°)</translation>
    </message>
    <message>
        <source>Ball speed (mph)</source>
        <translation>球速 (mph)</translation>
    </message>
    <message>
        <source>Export shots</source>
        <translation>导出击球数据</translation>
    </message>
    <message>
        <source>CSV files (*.csv)</source>
        <translation>CSV 文件 (*.csv)</translation>
    </message>
    <message>
        <source>The file could not be written.</source>
        <translation>无法写入文件。</translation>
    </message>
</context>
</TS>
