<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ko_KR">
<context>
    <name>COrvaneWinApp</name>
    <message>
        <source>Orvane X is already running.</source>
        <translation>Orvane X가 이미 실행 중입니다.</translation>
    </message>
    <message>
        <source>No display found: running in console mode.</source>
        <translation>디스플레이를 찾을 수 없습니다. 콘솔 모드로 실행합니다.</translation>
    </message>
    <message>
        <source>Orvane X %1 running with the demo sensor. Ctrl-C quits.</source>
        <translation>Orvane X %1이(가) 데모 센서로 실행 중입니다. Ctrl-C로 종료합니다.</translation>
    </message>
    <message>
        <source>Orvane X %1 running. Ctrl-C quits.</source>
        <translation>Orvane X %1 실행 중입니다. Ctrl-C로 종료합니다.</translation>
    </message>
    <message>
        <source>Shutting down.</source>
        <translation>종료하는 중입니다.</translation>
    </message>
</context>
<context>
    <name>ClubName</name>
    <message>
        <source>Driver</source>
        <translation>드라이버</translation>
    </message>
    <message>
        <source>3 Wood</source>
        <translation>3번 우드</translation>
    </message>
    <message>
        <source>5 Wood</source>
        <translation>5번 우드</translation>
    </message>
    <message>
        <source>7 Wood</source>
        <translation>7번 우드</translation>
    </message>
    <message>
        <source>4 Hybrid</source>
        <translation>4번 유틸리티</translation>
    </message>
    <message>
        <source>3 Iron</source>
        <translation>3번 아이언</translation>
    </message>
    <message>
        <source>4 Iron</source>
        <translation>4번 아이언</translation>
    </message>
    <message>
        <source>5 Iron</source>
        <translation>5번 아이언</translation>
    </message>
    <message>
        <source>6 Iron</source>
        <translation>6번 아이언</translation>
    </message>
    <message>
        <source>7 Iron</source>
        <translation>7번 아이언</translation>
    </message>
    <message>
        <source>8 Iron</source>
        <translation>8번 아이언</translation>
    </message>
    <message>
        <source>9 Iron</source>
        <translation>9번 아이언</translation>
    </message>
    <message>
        <source>Pitching Wedge</source>
        <translation>피칭 웨지</translation>
    </message>
    <message>
        <source>Gap Wedge</source>
        <translation>갭 웨지</translation>
    </message>
    <message>
        <source>Sand Wedge</source>
        <translation>샌드 웨지</translation>
    </message>
    <message>
        <source>Lob Wedge</source>
        <translation>로브 웨지</translation>
    </message>
    <message>
        <source>Putter</source>
        <translation>퍼터</translation>
    </message>
    <message>
        <source>Club %1</source>
        <translation>클럽 %1</translation>
    </message>
</context>
<context>
    <name>ConsoleReporter</name>
    <message>
        <source>Simulator: connected</source>
        <translation>시뮬레이터: 연결됨</translation>
    </message>
    <message>
        <source>Simulator: disconnected</source>
        <translation>시뮬레이터: 연결 끊김</translation>
    </message>
    <message>
        <source>Sensor: disconnected</source>
        <translation>센서: 연결 끊김</translation>
    </message>
    <message>
        <source>Sensor: searching</source>
        <translation>센서: 검색 중</translation>
    </message>
    <message>
        <source>Sensor: connecting</source>
        <translation>센서: 연결 중</translation>
    </message>
    <message>
        <source>Sensor: connected, firmware %1</source>
        <translation>센서: 연결됨, 펌웨어 %1</translation>
    </message>
    <message>
        <source>Sensor battery: %1</source>
        <translation>센서 배터리: %1</translation>
    </message>
    <message>
        <source>Shot %1: %2</source>
        <translation>샷 %1: %2</translation>
    </message>
</context>
<context>
    <name>OrvaneWinUI::ClubPicker</name>
    <message>
        <source>CLUB</source>
        <translation>클럽</translation>
    </message>
</context>
<context>
    <name>OrvaneWinUI::OrvaneUIControl</name>
    <message>
        <source>Swing sensor for E6</source>
        <translation>E6용 스윙 센서</translation>
    </message>
    <message>
        <source>E6 SIMULATOR</source>
        <translation>E6 시뮬레이터</translation>
    </message>
    <message>
        <source>Disconnected</source>
        <translation>연결 안 됨</translation>
    </message>
    <message>
        <source>SENSOR</source>
        <translation>센서</translation>
    </message>
    <message>
        <source>BATTERY</source>
        <translation>배터리</translation>
    </message>
    <message>
        <source>FIRMWARE</source>
        <translation>펌웨어</translation>
    </message>
    <message>
        <source>Swing level</source>
        <translation>스윙 레벨</translation>
    </message>
    <message>
        <source>Easy</source>
        <translation>쉬움</translation>
    </message>
    <message>
        <source>Normal</source>
        <comment>swing level</comment>
        <translation>보통</translation>
    </message>
    <message>
        <source>Pro</source>
        <translation>프로</translation>
    </message>
    <message>
        <source>Swing sensitivity</source>
        <translation>스윙 감도</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>낮음</translation>
    </message>
    <message>
        <source>Normal</source>
        <comment>sensitivity</comment>
        <translation>보통</translation>
    </message>
    <message>
        <source>High</source>
        <translation>높음</translation>
    </message>
    <message>
        <source>Club type</source>
        <translation>클럽 종류</translation>
    </message>
    <message>
        <source>Swing stick</source>
        <translation>스윙 스틱</translation>
    </message>
    <message>
        <source>Real club</source>
        <translation>실제 클럽</translation>
    </message>
    <message>
        <source>Sound effects</source>
        <translation>효과음</translation>
    </message>
    <message>
        <source>On</source>
        <translation>켜기</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>끄기</translation>
    </message>
    <message>
        <source>Camera preview</source>
        <translation>카메라 미리보기</translation>
    </message>
    <message>
        <source>Swing recording</source>
        <translation>스윙 녹화</translation>
    </message>
    <message>
        <source>Show shot result</source>
        <translation>샷 결과 표시</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>표시</translation>
    </message>
    <message>
        <source>No</source>
        <translation>표시 안 함</translation>
    </message>
    <message>
        <source>User guide</source>
        <translation>사용 설명서</translation>
    </message>
    <message>
        <source>Support</source>
        <translation>고객 지원</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>저장</translation>
    </message>
    <message>
        <source>Start E6</source>
        <translation>E6 실행</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>종료</translation>
    </message>
    <message>
        <source>History</source>
        <translation>기록</translation>
    </message>
    <message>
        <source>SIMULATOR COMPUTER</source>
        <translation>시뮬레이터 컴퓨터</translation>
    </message>
    <message>
        <source>This computer</source>
        <translation>이 컴퓨터</translation>
    </message>
    <message>
        <source>Host name or IPv4 address of the computer running E6</source>
        <translation>E6를 실행하는 컴퓨터의 호스트 이름 또는 IPv4 주소</translation>
    </message>
</context>
<context>
    <name>OrvaneWinUI::ShotPanel</name>
    <message>
        <source>BALL SPEED</source>
        <translation>볼 스피드</translation>
    </message>
    <message>
        <source>LAUNCH</source>
        <translation>발사각</translation>
    </message>
    <message>
        <source>DIRECTION</source>
        <translation>방향</translation>
    </message>
    <message>
        <source>BACK SPIN</source>
        <translation>백스핀</translation>
    </message>
    <message>
        <source>SIDE SPIN</source>
        <translation>사이드 스핀</translation>
    </message>
    <message>
        <source>HEAD SPEED</source>
        <translation>헤드 스피드</translation>
    </message>
    <message>
        <source>LAST SHOT</source>
        <translation>최근 샷</translation>
    </message>
    <message>
        <source>L %1</source>
        <translation>좌 %1</translation>
    </message>
    <message>
        <source>R %1</source>
        <translation>우 %1</translation>
    </message>
</context>
<context>
    <name>OrvaneWinUI::WaitingOverlay</name>
    <message>
        <source>Please wait...</source>
        <translation>잠시 기다려 주세요…</translation>
    </message>
</context>
<context>
    <name>PlayerWnd</name>
    <message>
        <source>Swing replay</source>
        <translation>스윙 다시 보기</translation>
    </message>
</context>
<context>
    <name>PreviewWnd</name>
    <message>
        <source>Camera preview</source>
        <translation>카메라 미리보기</translation>
    </message>
</context>
<context>
    <name>SessionSummary</name>
    <message>
        <source>Session: no shots</source>
        <translation>세션: 샷 없음</translation>
    </message>
    <message>
        <source>%1 1 shot</source>
        <translation>%1 1샷</translation>
    </message>
    <message>
        <source>%1 %2 shots</source>
        <translation>%1 %2샷</translation>
    </message>
    <message>
        <source>%1, ball speed %2 ± %3, launch %4, direction %5, back spin %6, side spin %7, head speed %8</source>
        <translation>%1, 볼 스피드 %2 ± %3, 발사각 %4, 방향 %5, 백스핀 %6, 사이드 스핀 %7, 헤드 스피드 %8</translation>
    </message>
    <message>
        <source>Session: %1</source>
        <translation>세션: %1</translation>
    </message>
</context>
<context>
    <name>ShotLine</name>
    <message>
        <source>%1: ball speed %2, launch %3, direction %4, back spin %5, side spin %6, head speed %7</source>
        <translation>%1: 볼 스피드 %2, 발사각 %3, 방향 %4, 백스핀 %5, 사이드 스핀 %6, 헤드 스피드 %7</translation>
    </message>
</context>
<context>
    <name>ShotOutcome</name>
    <message>
        <source>Shot not sent: no simulator connected</source>
        <translation>샷 전송 안 됨: 연결된 시뮬레이터가 없습니다</translation>
    </message>
    <message>
        <source>Shot not sent: the simulator did not log us in</source>
        <translation>샷 전송 안 됨: 시뮬레이터에 로그인하지 못했습니다</translation>
    </message>
    <message>
        <source>Shot not sent: the simulator link failed</source>
        <translation>샷 전송 안 됨: 시뮬레이터와의 연결에 실패했습니다</translation>
    </message>
    <message>
        <source>Shot not sent: the simulator named no known club</source>
        <translation>샷 전송 안 됨: 시뮬레이터가 알 수 없는 클럽을 지정했습니다</translation>
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
        <translation>사용법: OrvaneWin [-demo] [-console] [-debug] [-debug_packet] [-debug_file]
Orvane X 센서의 스윙을 E6 골프 시뮬레이터로 보냅니다.

  -demo          스스로 스윙하는 내장 데모 센서
  -console       창 없음: 상태와 샷마다 한 줄을 표준 출력에 표시
  -debug         로그를 표준 출력에 표시
  -debug_packet  센서 프레임과 시뮬레이터 메시지를 표준 출력에 표시
  -debug_file    -debug 또는 -debug_packet과 함께 사용: 로그를 log.txt에 기록
  -h, --help     이 도움말
  --version      프로그램 버전

설정: $XDG_CONFIG_HOME/Orvane X/settings.ini ([E6] 섹션의 Host 키:
시뮬레이터를 실행하는 컴퓨터. 이 컴퓨터이면 비워 둡니다).
</translation>
    </message>
</context>
<context>
    <name>orv::CMainDlg</name>
    <message>
        <source>Shot not sent: the simulator named no known club</source>
        <translation>샷 전송 안 됨: 시뮬레이터가 알 수 없는 클럽을 지정했습니다</translation>
    </message>
</context>
<context>
    <name>orv::HistoryDialog</name>
    <message>
        <source>sent</source>
        <translation>전송됨</translation>
    </message>
    <message>
        <source>Shot history</source>
        <translation>샷 기록</translation>
    </message>
    <message>
        <source>All clubs</source>
        <translation>모든 클럽</translation>
    </message>
    <message>
        <source>Club</source>
        <translation>클럽</translation>
    </message>
    <message>
        <source>From</source>
        <translation>시작일</translation>
    </message>
    <message>
        <source>To</source>
        <translation>종료일</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>시간</translation>
    </message>
    <message>
        <source>Ball speed</source>
        <translation>볼 스피드</translation>
    </message>
    <message>
        <source>Launch</source>
        <translation>발사각</translation>
    </message>
    <message>
        <source>Direction</source>
        <translation>방향</translation>
    </message>
    <message>
        <source>Back spin</source>
        <translation>백스핀</translation>
    </message>
    <message>
        <source>Side spin</source>
        <translation>사이드 스핀</translation>
    </message>
    <message>
        <source>Head speed</source>
        <translation>헤드 스피드</translation>
    </message>
    <message>
        <source>Shot</source>
        <translation>샷</translation>
    </message>
    <message>
        <source>Clip</source>
        <translation>영상</translation>
    </message>
    <message>
        <source>Shots</source>
        <translation>샷 목록</translation>
    </message>
    <message>
        <source>Shot shape: launch direction against side spin</source>
        <translation>구질: 발사 방향과 사이드 스핀</translation>
    </message>
    <message>
        <source>Ball speed over the session</source>
        <translation>세션 중 볼 스피드 변화</translation>
    </message>
    <message>
        <source>Per club</source>
        <translation>클럽별</translation>
    </message>
    <message>
        <source>Shot shape</source>
        <translation>구질</translation>
    </message>
    <message>
        <source>Replay clip</source>
        <translation>영상 재생</translation>
    </message>
    <message>
        <source>Export selected…</source>
        <translation>선택한 샷 내보내기…</translation>
    </message>
    <message>
        <source>Export all…</source>
        <translation>모두 내보내기…</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>닫기</translation>
    </message>
    <message>
        <source>gone</source>
        <translation>삭제됨</translation>
    </message>
    <message>
        <source>Side spin (rpm)</source>
        <translation>사이드 스핀 (rpm)</translation>
    </message>
    <message>
        <source>Launch direction (deg)</source>
        <translation>발사 방향 (°)</translation>
    </message>
    <message>
        <source>Ball speed (mph)</source>
        <translation>볼 스피드 (mph)</translation>
    </message>
    <message>
        <source>Export shots</source>
        <translation>샷 내보내기</translation>
    </message>
    <message>
        <source>CSV files (*.csv)</source>
        <translation>CSV 파일 (*.csv)</translation>
    </message>
    <message>
        <source>The file could not be written.</source>
        <translation>파일을 쓸 수 없습니다.</translation>
    </message>
</context>
</TS>
