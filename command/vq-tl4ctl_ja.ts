<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP" sourcelanguage="en">
<context>
    <name>vq-tl4ctl</name>
    <message>
        <source>%1 has not answered for %2 s.</source>
        <translation>%1 は %2 秒間応答していません。</translation>
    </message>
    <message>
        <source>one JSON object a line</source>
        <translation>1行に1つのJSONオブジェクトを出力する</translation>
    </message>
    <message>
        <source>serial number, with leading zeros or without</source>
        <translation>シリアル番号(先頭の0は省略可)</translation>
    </message>
    <message>
        <source>Reads and changes the settings of instruments, and proves what it changed.</source>
        <translation>測定器の設定を読み込み、変更し、変更した内容を検証します。</translation>
    </message>
    <message>
        <source>show the version</source>
        <translation>バージョンを表示する</translation>
    </message>
    <message>
        <source>language of the messages, in place of the system&apos;s</source>
        <translation>メッセージの言語(省略時はシステムの言語)</translation>
    </message>
    <message>
        <source>list the attached instruments</source>
        <translation>接続されている測定器を一覧表示する</translation>
    </message>
    <message>
        <source>show what an instrument holds</source>
        <translation>測定器が保持している内容を表示する</translation>
    </message>
    <message>
        <source>show the security key, not only that it is set</source>
        <translation>セキュリティキーを伏せずに表示する</translation>
    </message>
    <message>
        <source>write a snapshot of each instrument to a folder</source>
        <translation>各測定器のスナップショットをフォルダーに保存する</translation>
    </message>
    <message>
        <source>all attached instruments</source>
        <translation>接続されているすべての測定器</translation>
    </message>
    <message>
        <source>the folder; it is made where it is missing</source>
        <translation>保存先のフォルダー(ないときは作成する)</translation>
    </message>
    <message>
        <source>leave the security key out</source>
        <translation>セキュリティキーを含めない</translation>
    </message>
    <message>
        <source>check files without an instrument</source>
        <translation>測定器を使わずにファイルを検査する</translation>
    </message>
    <message>
        <source>change instruments, and prove it</source>
        <translation>測定器を変更し、検証する</translation>
    </message>
    <message>
        <source>The instrument has changed since its difference was shown and confirmed.</source>
        <translation>相違を表示して確認した後に、測定器の内容が変わっています。</translation>
    </message>
    <message>
        <source>Write all this? Instruments: %1 [y/N]</source>
        <translation>これらをすべて書き込みますか?(測定器: %1台)[y/N]</translation>
    </message>
    <message>
        <source>%1: not-reached. The run stopped before it.</source>
        <translation>%1: not-reached(未処理)。その前に実行が止まりました。</translation>
    </message>
    <message>
        <source>connecting</source>
        <translation>接続中</translation>
    </message>
    <message>
        <source>reading</source>
        <translation>読み込み中</translation>
    </message>
    <message>
        <source>keeping a snapshot</source>
        <translation>スナップショットを保存中</translation>
    </message>
    <message>
        <source>writing calibration values</source>
        <translation>校正値を書き込み中</translation>
    </message>
    <message>
        <source>writing the power-off time</source>
        <translation>オートパワーオフ時間を書き込み中</translation>
    </message>
    <message>
        <source>writing network settings</source>
        <translation>ネットワーク設定を書き込み中</translation>
    </message>
    <message>
        <source>reading back</source>
        <translation>読み戻して確認中</translation>
    </message>
    <message>
        <source>putting the old state back</source>
        <translation>元の状態に復元中</translation>
    </message>
    <message>
        <source>%1 left</source>
        <translation>残り %1</translation>
    </message>
    <message>
        <source>Recap: serial number, outcome, changes</source>
        <translation>まとめ: シリアル番号、結果、変更数</translation>
    </message>
    <message>
        <source>Instrument %1 is named twice.</source>
        <translation>測定器 %1 が2回指定されています。</translation>
    </message>
    <message>
        <source>A plate or an adapter belongs to one instrument: its values are not registered in several.</source>
        <translation>白色校正板や環境光アダプターは1台の測定器に属するため、その校正値を複数の測定器には登録しません。</translation>
    </message>
    <message>
        <source>The settings have a fixed address, which only one instrument can have: use DHCP, or a plan.</source>
        <translation>設定に固定アドレスがあり、1台の測定器にしか使えません。DHCPまたは計画表を使用してください。</translation>
    </message>
    <message>
        <source>these instruments of the plan alone, with commas between</source>
        <translation>計画表のうち、コンマで区切ったこれらの測定器のみ</translation>
    </message>
    <message>
        <source>go on with the other instruments when one fails</source>
        <translation>1台が失敗しても残りの測定器を続ける</translation>
    </message>
    <message>
        <source>make or check a spreadsheet for many instruments</source>
        <translation>多数の測定器のための計画表を作成または検査する</translation>
    </message>
    <message>
        <source>make a plan to fill in, with a row for each attached instrument</source>
        <translation>接続されている測定器ごとに1行の、記入用の計画表を作成する</translation>
    </message>
    <message>
        <source>fill in all that the instruments hold, but for the key</source>
        <translation>セキュリティキー以外の現在の内容をすべて記入する</translation>
    </message>
    <message>
        <source>%1: its addresses are left out: %2</source>
        <translation>%1: アドレスは記入しません: %2</translation>
    </message>
    <message>
        <source>%1, row %2, column %3: %4</source>
        <translation>%1 の%2行目、%3列: %4</translation>
    </message>
    <message>
        <source>%1 is no network mask such as 255.255.255.0.</source>
        <translation>%1 は255.255.255.0のようなサブネットマスクではありません。</translation>
    </message>
    <message>
        <source>%1 is no address that an instrument can have.</source>
        <translation>%1 は測定器に割り当てられないアドレスです。</translation>
    </message>
    <message>
        <source>%1 is the address of the gateway as well.</source>
        <translation>%1 はゲートウェイのアドレスでもあります。</translation>
    </message>
    <message>
        <source>%1 is outside the network that mask %2 and gateway %3 make.</source>
        <translation>%1 は、マスク %2 とゲートウェイ %3 によるネットワークの範囲外です。</translation>
    </message>
    <message>
        <source>There is a quote within a cell: the whole cell has to be in quotes, and the quote in it doubled</source>
        <translation>セルの途中に引用符があります。セル全体を引用符で囲み、中の引用符は2つ重ねてください</translation>
    </message>
    <message>
        <source>A cell in quotes is not closed</source>
        <translation>引用符で囲んだセルが閉じていません</translation>
    </message>
    <message>
        <source>The last line has no line end: the file may have been cut off here</source>
        <translation>最後の行に改行がありません。ファイルがここで途切れた可能性があります</translation>
    </message>
    <message>
        <source>&quot;%1&quot; may have lost digits: give the column of the serial numbers the format &quot;text&quot;, and type them anew</source>
        <translation>「%1」は桁が失われた可能性があります。シリアル番号の列の書式を「文字列」にして入力し直してください</translation>
    </message>
    <message>
        <source>It has to be &quot;on&quot; or &quot;off&quot;, not &quot;%1&quot;</source>
        <translation>onまたはoffで指定してください(「%1」は不可)</translation>
    </message>
    <message>
        <source>It has to be four numbers from 0 to 255, such as 192.168.0.10, not &quot;%1&quot;</source>
        <translation>192.168.0.10のように0〜255の数値4つで指定してください(「%1」は不可)</translation>
    </message>
    <message>
        <source>The text has a line end, a tab or another control character</source>
        <translation>文字列に改行、タブなどの制御文字があります</translation>
    </message>
    <message>
        <source>The text looks like a number that a spreadsheet has shortened, such as 1.23E+15: give the column the format &quot;text&quot;, and type it anew</source>
        <translation>1.23E+15のように、表計算ソフトが短縮した数値に見えます。列の書式を「文字列」にして入力し直してください</translation>
    </message>
    <message>
        <source>The text has %1 bytes, at most %2 are allowed</source>
        <translation>文字列が%1バイトあります(最大%2バイト)</translation>
    </message>
    <message>
        <source>The text begins or ends with a blank, which belongs to it</source>
        <translation>文字列の先頭または末尾に空白があります。空白も文字列の一部です</translation>
    </message>
    <message>
        <source>The text has digits alone: a spreadsheet takes away zeros before them</source>
        <translation>文字列が数字だけです。表計算ソフトは、先頭の0を取り除くことがあります</translation>
    </message>
    <message>
        <source>It has to be off, 15, 30 or 60, not &quot;%1&quot;</source>
        <translation>off、15、30、60のいずれかで指定してください(「%1」は不可)</translation>
    </message>
    <message>
        <source>The file &quot;%1&quot; cannot be used:</source>
        <translation>ファイル「%1」は使用できません:</translation>
    </message>
    <message>
        <source>There is a column &quot;%1&quot; already</source>
        <translation>列「%1」が重複しています</translation>
    </message>
    <message>
        <source>A plan has no column &quot;%1&quot;. A column of your own begins with &quot;#&quot;.</source>
        <translation>計画表に列「%1」はありません。独自の列の名前は「#」で始めてください。</translation>
    </message>
    <message>
        <source>The header has no column &quot;serial&quot;</source>
        <translation>見出しの行に列「serial」がありません</translation>
    </message>
    <message>
        <source>The text is not UTF-8: save the plan as &quot;CSV UTF-8&quot;</source>
        <translation>文字コードがUTF-8ではありません。計画表を「CSV UTF-8」で保存してください</translation>
    </message>
    <message>
        <source>&quot;%1&quot; stands in a column without a name</source>
        <translation>名前のない列に「%1」があります</translation>
    </message>
    <message>
        <source>The row has no serial number</source>
        <translation>行にシリアル番号がありません</translation>
    </message>
    <message>
        <source>Instrument %1 is not in the plan</source>
        <translation>測定器 %1 は計画表にありません</translation>
    </message>
    <message>
        <source>The plan has no row</source>
        <translation>計画表に行がありません</translation>
    </message>
    <message>
        <source>Instrument %1 is in row %2 as well</source>
        <translation>測定器 %1 は%2行目にもあります</translation>
    </message>
    <message>
        <source>The address %1 is in row %2 as well</source>
        <translation>アドレス %1 は%2行目にもあります</translation>
    </message>
    <message>
        <source>White plate %1 is in row %2 as well</source>
        <translation>白色校正板 %1 は%2行目にもあります</translation>
    </message>
    <message>
        <source>Ambient adapter %1 is in row %2 as well</source>
        <translation>環境光アダプター %1 は%2行目にもあります</translation>
    </message>
    <message>
        <source>%1: a plan, no fault (instruments: %2)</source>
        <translation>%1: 計画表、誤りなし(測定器: %2台)</translation>
    </message>
    <message>
        <source>the plan: a spreadsheet (.csv), a row for each instrument</source>
        <translation>計画表: 測定器ごとに1行の表(.csv)</translation>
    </message>
    <message>
        <source>find every mistake in a plan</source>
        <translation>計画表の誤りをすべて調べる</translation>
    </message>
    <message>
        <source>without looking whether the instruments are attached</source>
        <translation>測定器が接続されているかどうかは調べない</translation>
    </message>
    <message>
        <source>settings (.ini), values or a plan (.csv), snapshots (.json)</source>
        <translation>設定ファイル(.ini)、校正値ファイルまたは計画表(.csv)、スナップショット(.json)</translation>
    </message>
    <message>
        <source>compare two: a serial number, a snapshot, settings (.ini)</source>
        <translation>2つを比較する(シリアル番号、スナップショット、設定ファイル(.ini))</translation>
    </message>
    <message>
        <source>the one</source>
        <translation>一方</translation>
    </message>
    <message>
        <source>the other</source>
        <translation>もう一方</translation>
    </message>
    <message>
        <source>only show what would change: exit status 7</source>
        <translation>変更される内容の表示だけを行う(変更があれば終了ステータス7)</translation>
    </message>
    <message>
        <source>write without asking</source>
        <translation>確認せずに書き込む</translation>
    </message>
    <message>
        <source>write with an empty battery</source>
        <translation>電池が空でも書き込む</translation>
    </message>
    <message>
        <source>put the old state back (the default), or leave it</source>
        <translation>失敗したときに元に戻す(rollback、省略時)か、そのままにする(leave)</translation>
    </message>
    <message>
        <source>network settings file (.ini)</source>
        <translation>ネットワークの設定ファイル(.ini)</translation>
    </message>
    <message>
        <source>automatic power-off, in minutes</source>
        <translation>オートパワーオフ時間(分)</translation>
    </message>
    <message>
        <source>values of the white calibration plate (.csv)</source>
        <translation>白色校正板の校正値ファイル(.csv)</translation>
    </message>
    <message>
        <source>values of the ambient light adapter (.csv)</source>
        <translation>環境光アダプターの校正値ファイル(.csv)</translation>
    </message>
    <message>
        <source>write values that look wrong</source>
        <translation>誤りと思われる値も書き込む</translation>
    </message>
    <message>
        <source>put a snapshot back, and prove it</source>
        <translation>スナップショットの状態に戻し、検証する</translation>
    </message>
    <message>
        <source>a snapshot of this instrument</source>
        <translation>この測定器のスナップショット</translation>
    </message>
    <message>
        <source>these parts alone, with commas between</source>
        <translation>戻す部分(コンマ区切り)</translation>
    </message>
    <message>
        <source> (another key)</source>
        <translation>(別のキー)</translation>
    </message>
    <message>
        <source>Instrument %1, no changes.</source>
        <translation>測定器 %1、変更なし</translation>
    </message>
    <message>
        <source>Instrument %1, 1 change:</source>
        <translation>測定器 %1、変更 1 件:</translation>
    </message>
    <message>
        <source>Instrument %1, %2 changes:</source>
        <translation>測定器 %1、変更 %2 件:</translation>
    </message>
    <message>
        <source>Write this to instrument %1? [y/N]</source>
        <translation>測定器 %1 に書き込みますか? [y/N]</translation>
    </message>
    <message>
        <source>%1 cannot be written: %2</source>
        <translation>%1 に書き込めません: %2</translation>
    </message>
    <message>
        <source>The file is UTF-16 text: save it as plain text or UTF-8</source>
        <translation>ファイルがUTF-16です。通常のテキストまたはUTF-8で保存してください</translation>
    </message>
    <message>
        <source>The lines end in CR alone: save the file with LF or CR LF</source>
        <translation>行末がCRだけです。LFまたはCR LFで保存してください</translation>
    </message>
    <message>
        <source>There is a NUL byte in the line</source>
        <translation>行にNULバイトがあります</translation>
    </message>
    <message>
        <source>There is a CR in the line, not at its end</source>
        <translation>行の途中にCRがあります</translation>
    </message>
    <message>
        <source>The file cannot be opened: %1</source>
        <translation>ファイルを開けません: %1</translation>
    </message>
    <message>
        <source>This is not a file: only regular files are read</source>
        <translation>ファイルではありません。読み込めるのは通常のファイルだけです</translation>
    </message>
    <message>
        <source>The file cannot be read: %1</source>
        <translation>ファイルを読み込めません: %1</translation>
    </message>
    <message>
        <source>The file has more than %1 bytes</source>
        <translation>ファイルが %1 バイトを超えています</translation>
    </message>
    <message>
        <source>Two answers of %1 differ, or it left bytes unwritten.</source>
        <translation>%1 の2回の応答が一致しないか、書き込まれていないバイトがあります。</translation>
    </message>
    <message>
        <source>%1 answered %2.</source>
        <translation>%1 の応答は %2 でした。</translation>
    </message>
    <message>
        <source>Instrument %1 is not attached.</source>
        <translation>測定器 %1 は接続されていません。</translation>
    </message>
    <message>
        <source>Instrument %1 is listed more than once.</source>
        <translation>測定器 %1 が2回以上一覧にあります。</translation>
    </message>
    <message>
        <source>The instrument that is listed as %1 says that it has another serial number.</source>
        <translation>%1 として一覧にある測定器が、別のシリアル番号を応答しました。</translation>
    </message>
    <message>
        <source>The calibration record that the instrument answers is not the expected one.</source>
        <translation>測定器が応答した校正データが、期待したものと一致しません。</translation>
    </message>
    <message>
        <source>Interrupted: it stops after the present step.</source>
        <translation>中断を受け付けました。現在の手順が終わると停止します。</translation>
    </message>
    <message>
        <source>Interrupted: it stops when the calibration record has been committed, and not before.</source>
        <translation>中断を受け付けました。校正データの保存が終わるまで停止しません。</translation>
    </message>
    <message>
        <source>Interrupted: it stops when the instrument&apos;s state is known, and not before.</source>
        <translation>中断を受け付けました。測定器の状態が確認できるまで停止しません。</translation>
    </message>
    <message>
        <source>All values are equal</source>
        <translation>すべての値が同じです</translation>
    </message>
    <message>
        <source>values that differ</source>
        <translation>互いに異なる値</translation>
    </message>
    <message>
        <source>Most values are negative</source>
        <translation>ほとんどの値が負です</translation>
    </message>
    <message>
        <source>positive values</source>
        <translation>正の値</translation>
    </message>
    <message>
        <source>The values are as a whole %1 times those that the instrument holds: percentages in place of ratios, or the reverse?</source>
        <translation>値が全体として、測定器が保持する値の %1 倍です。比率の代わりに百分率が、またはその逆になっていませんか?</translation>
    </message>
    <message>
        <source>values near those of the instrument, which holds %1 here</source>
        <translation>測定器の値(ここでは %1)に近い値</translation>
    </message>
    <message>
        <source>Its sign is not that of its neighbours</source>
        <translation>前後の値と符号が異なります</translation>
    </message>
    <message>
        <source>It is %1 times what its neighbours suggest: is the decimal point missing or misplaced, or is it a percentage among ratios?</source>
        <translation>前後の値から予想される値の %1 倍です。小数点の抜けや位置の誤りはありませんか? または、比率の値に百分率が混ざっていませんか?</translation>
    </message>
    <message>
        <source>It does not go with its neighbours: are digits exchanged, doubled or lost?</source>
        <translation>前後の値と合いません。数字の入れ替わり、重複、抜けはありませんか?</translation>
    </message>
    <message>
        <source>about %1</source>
        <translation>約 %1</translation>
    </message>
    <message>
        <source>about %1; the instrument holds %2</source>
        <translation>約 %1。測定器の値は %2</translation>
    </message>
    <message>
        <source>%1: unchanged. Nothing was written.</source>
        <translation>%1: unchanged(変更なし)。何も書き込んでいません。</translation>
    </message>
    <message>
        <source>%1: verified. It was written, read back independently, and is equal in every byte.</source>
        <translation>%1: verified(検証済み)。書き込み、接続し直して読み出し、全バイトが一致しました。</translation>
    </message>
    <message>
        <source>%1: refused. Nothing was written.</source>
        <translation>%1: refused(拒否)。何も書き込んでいません。</translation>
    </message>
    <message>
        <source>%1: rolled-back. The old state is back, and verified.</source>
        <translation>%1: rolled-back(復元済み)。元の状態に戻し、検証しました。</translation>
    </message>
    <message>
        <source>%1: unknown. What the instrument holds could not be verified.</source>
        <translation>%1: unknown(不明)。測定器が保持している内容を検証できませんでした。</translation>
    </message>
    <message>
        <source>%1: waits. All but the network settings is verified.</source>
        <translation>%1: waits(待機)。ネットワークの設定以外は検証済みです。</translation>
    </message>
    <message>
        <source>%1: would-change. Nothing was written.</source>
        <translation>%1: would-change(変更あり)。何も書き込んでいません。</translation>
    </message>
    <message>
        <source>White plate, value %1 of %2, values[%3]: %4 (expected: %5). %6</source>
        <translation>白色校正板、%2 個中 %1 番目の値(values[%3]): %4(予想: %5)。%6</translation>
    </message>
    <message>
        <source>Ambient adapter, value %1 of %2, values[%3]: %4 (expected: %5). %6</source>
        <translation>環境光アダプター、%2 個中 %1 番目の値(values[%3]): %4(予想: %5)。%6</translation>
    </message>
    <message>
        <source>The library warned: %1</source>
        <translation>ライブラリーの警告: %1</translation>
    </message>
    <message>
        <source>The state before is in %1</source>
        <translation>変更前の状態は次のファイルにあります: %1</translation>
    </message>
    <message>
        <source>%1 has to be 0 or 1, not &quot;%2&quot;</source>
        <translation>%1 は0か1でなければなりません(&quot;%2&quot; になっています)</translation>
    </message>
    <message>
        <source>%1 has to be four numbers from 0 to 255, such as 192.168.0.10, not &quot;%2&quot;</source>
        <translation>%1 は192.168.0.10のように0から255までの4つの数でなければなりません(&quot;%2&quot; になっています)</translation>
    </message>
    <message>
        <source>%1 has %2 bytes, at most %3 are allowed</source>
        <translation>%1 が %2 バイトあります(最大 %3 バイト)</translation>
    </message>
    <message>
        <source>A byte-order mark stands before [Network]: save the file without it</source>
        <translation>[Network]の前にBOMがあります。BOMなしで保存してください</translation>
    </message>
    <message>
        <source>The file has no line that is [Network] alone, without blanks or comments</source>
        <translation>[Network]だけの行(空白やコメントのない行)がありません</translation>
    </message>
    <message>
        <source>The section has no %1 with a value</source>
        <translation>値のある %1 がセクションにありません</translation>
    </message>
    <message>
        <source>%1 has no value</source>
        <translation>%1 に値がありません</translation>
    </message>
    <message>
        <source>The value of %1 is too long</source>
        <translation>%1 の値が長すぎます</translation>
    </message>
    <message>
        <source>This is not a snapshot: it is not JSON (%1).</source>
        <translation>スナップショットではありません。JSONとして読めません(%1)。</translation>
    </message>
    <message>
        <source>This is not a snapshot of an instrument.</source>
        <translation>測定器のスナップショットではありません。</translation>
    </message>
    <message>
        <source>The snapshot has version %1, and this program knows versions up to %2: it was made by a newer one.</source>
        <translation>スナップショットのバージョンは %1 ですが、このプログラムが対応するのは %2 までです。新しいプログラムで作成されたものです。</translation>
    </message>
    <message>
        <source>The snapshot is damaged or was edited: its content does not match its SHA-256.</source>
        <translation>スナップショットが壊れているか、編集されています。内容がSHA-256と一致しません。</translation>
    </message>
    <message>
        <source>The snapshot is damaged: its fields and its records do not say the same.</source>
        <translation>スナップショットが壊れています。項目とデータの内容が一致しません。</translation>
    </message>
    <message>
        <source>The network settings are stored, and the instrument still answers the old ones, as it may until it has been switched off and on.</source>
        <translation>ネットワークの設定は保存されましたが、測定器はまだ以前の設定を応答しています。電源を入れ直すまでは、この状態でも異常ではありません。</translation>
    </message>
    <message>
        <source>It was left as it is, as was asked.</source>
        <translation>指定に従い、そのままの状態にしました。</translation>
    </message>
    <message>
        <source>The old state could not be put back.</source>
        <translation>元の状態に戻せませんでした。</translation>
    </message>
    <message>
        <source>To end it, run %1. To put the state before back in any case, run: %2</source>
        <translation>完了させるには、%1 を実行してください。必ず変更前の状態に戻すには、次を実行してください: %2</translation>
    </message>
    <message>
        <source>It was interrupted.</source>
        <translation>中断されました。</translation>
    </message>
    <message>
        <source>The connection to the instrument was lost.</source>
        <translation>測定器との接続が失われました。</translation>
    </message>
    <message>
        <source>An earlier write to this instrument did not end: what it answers may not be in its memory. To end it, run %1. To put the state before back in any case, run: %2</source>
        <translation>この測定器への以前の書き込みが完了していません。応答した内容が測定器のメモリーに保存されていない可能性があります。完了させるには、%1 を実行してください。必ず変更前の状態に戻すには、次を実行してください: %2</translation>
    </message>
    <message>
        <source>All bytes of the instrument&apos;s calibration record are 0x00 or 0xFF: that is no record.</source>
        <translation>測定器の校正データがすべて0x00または0xFFです。校正データではありません。</translation>
    </message>
    <message>
        <source>All bytes of the calibration record to be written are 0x00 or 0xFF: that is no record.</source>
        <translation>書き込む校正データがすべて0x00または0xFFです。校正データではありません。</translation>
    </message>
    <message>
        <source>The instrument has no wireless module and takes no network settings.</source>
        <translation>この測定器には無線LANモジュールがないため、ネットワークの設定は書き込めません。</translation>
    </message>
    <message>
        <source>The instrument&apos;s battery is empty (KVA_WARNING_BATTERY_EMPTY). Charge it, or allow it with --allow-low-battery.</source>
        <translation>測定器の電池が空です(KVA_WARNING_BATTERY_EMPTY)。充電するか、--allow-low-battery を指定してください。</translation>
    </message>
    <message>
        <source>Implausible values: %1. If they are right, accept them with --accept-implausible.</source>
        <translation>誤りと思われる値があります: %1。正しい場合は、--accept-implausible を指定してください。</translation>
    </message>
    <message>
        <source>Implausible values were accepted: %1.</source>
        <translation>誤りと思われる値を受け入れました: %1。</translation>
    </message>
    <message>
        <source>The change was not confirmed.</source>
        <translation>変更は承認されませんでした。</translation>
    </message>
    <message>
        <source>The library reports a commit, and does not confirm that nothing is staged any more: the record may not be in the instrument&apos;s memory.</source>
        <translation>ライブラリーは保存の成功を応答しましたが、未保存のデータが残っていないことを確認できません。校正データが測定器のメモリーに保存されていない可能性があります。</translation>
    </message>
    <message>
        <source>The instrument that was read back is not the one that was written.</source>
        <translation>読み出した測定器が、書き込んだ測定器ではありません。</translation>
    </message>
    <message>
        <source>What was read back differs: %1.</source>
        <translation>読み出した内容が異なります: %1。</translation>
    </message>
    <message>
        <source>The serial number has to be eight digits, from %1 to %2, not &quot;%3&quot;</source>
        <translation>シリアル番号は %1 から %2 までの8桁の数字でなければなりません(&quot;%3&quot; になっています)</translation>
    </message>
    <message>
        <source>There is no value here</source>
        <translation>ここに値がありません</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a decimal number such as 92.465</source>
        <translation>&quot;%1&quot; は92.465のような10進数ではありません</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is too large for single precision</source>
        <translation>&quot;%1&quot; は単精度で表せる範囲より大きい値です</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is too small for single precision</source>
        <translation>&quot;%1&quot; は単精度で表せる範囲より小さい値です</translation>
    </message>
    <message>
        <source>The line has %1 values instead of %2</source>
        <translation>値が %2 個必要ですが、%1 個あります</translation>
    </message>
    <message>
        <source>The file ends before its fourth line: two headings, the serial number and the values have to be there</source>
        <translation>ファイルが4行に足りません。見出し2行、シリアル番号、値の行が必要です</translation>
    </message>
    <message>
        <source>The line of the values has no line end: the file may have been cut off here</source>
        <translation>値の行に行末がありません。ファイルがここで途切れている可能性があります</translation>
    </message>
    <message>
        <source>No instrument is attached.</source>
        <translation>測定器が接続されていません。</translation>
    </message>
    <message>
        <source>%1: an earlier write did not end, so what the instrument answers may not be in its memory: it is not backed up.</source>
        <translation>%1: 以前の書き込みが完了していないため、応答した内容がメモリーに保存されていない可能性があります。スナップショットは保存しません。</translation>
    </message>
    <message>
        <source>%1: network settings, no fault</source>
        <translation>%1: ネットワークの設定、誤りなし</translation>
    </message>
    <message>
        <source>%1: a snapshot, no fault</source>
        <translation>%1: スナップショット、誤りなし</translation>
    </message>
    <message>
        <source>%1: values of a white plate, no fault</source>
        <translation>%1: 白色校正板の校正値、誤りなし</translation>
    </message>
    <message>
        <source>%1: values of an ambient adapter, no fault</source>
        <translation>%1: 環境光アダプターの校正値、誤りなし</translation>
    </message>
    <message>
        <source>Only an instrument, a snapshot and network settings can be compared.</source>
        <translation>比較できるのは、測定器、スナップショット、ネットワークの設定だけです。</translation>
    </message>
    <message>
        <source>There are no network settings to compare with: the instrument has no wireless module.</source>
        <translation>比較するネットワークの設定がありません。測定器に無線LANモジュールがありません。</translation>
    </message>
    <message>
        <source>%1  %2  (an unfinished write)</source>
        <translation>%1  %2  (書き込み未完了)</translation>
    </message>
    <message>
        <source>%1  %2</source>
        <translation>%1  %2</translation>
    </message>
    <message>
        <source>The snapshot is one of instrument %1, not of %2.</source>
        <translation>このスナップショットは測定器 %1 のもので、%2 のものではありません。</translation>
    </message>
    <message>
        <source>The snapshot has no security key, so its network settings cannot be put back: name the other parts with --only.</source>
        <translation>スナップショットにセキュリティキーが含まれていないため、ネットワークの設定は戻せません。--only でほかの部分を指定してください。</translation>
    </message>
    <message>
        <source>The snapshot has no network settings.</source>
        <translation>スナップショットにネットワークの設定がありません。</translation>
    </message>
    <message>
        <source>Wireless LAN:     %1</source>
        <translation>無線LAN:               %1</translation>
    </message>
    <message>
        <source>DHCP:             %1</source>
        <translation>DHCP:                  %1</translation>
    </message>
    <message>
        <source>IP address:       %1</source>
        <translation>IPアドレス:            %1</translation>
    </message>
    <message>
        <source>Subnet mask:      %1</source>
        <translation>サブネットマスク:      %1</translation>
    </message>
    <message>
        <source>Default gateway:  %1</source>
        <translation>デフォルトゲートウェイ:%1</translation>
    </message>
    <message>
        <source>DNS server:       %1</source>
        <translation>DNSサーバー:           %1</translation>
    </message>
    <message>
        <source>SSID:             %1</source>
        <translation>SSID:                  %1</translation>
    </message>
    <message>
        <source>Security key:     %1</source>
        <translation>セキュリティキー:      %1</translation>
    </message>
    <message>
        <source>Serial number:    %1</source>
        <translation>シリアル番号:          %1</translation>
    </message>
    <message>
        <source>Firmware:         %1</source>
        <translation>ファームウェア:        %1</translation>
    </message>
    <message>
        <source>MAC address:      %1</source>
        <translation>MACアドレス:           %1</translation>
    </message>
    <message>
        <source>Wireless module:  none</source>
        <translation>無線LANモジュール:     なし</translation>
    </message>
    <message>
        <source>Power-off time:   %1</source>
        <translation>オートパワーオフ時間:  %1</translation>
    </message>
    <message>
        <source>White plate:      %1</source>
        <translation>白色校正板:            %1</translation>
    </message>
    <message>
        <source>Ambient adapter:  %1</source>
        <translation>環境光アダプター:      %1</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is not a serial number.</source>
        <translation>&quot;%1&quot; はシリアル番号ではありません。</translation>
    </message>
    <message>
        <source>Without a terminal nobody can be asked: confirm the change with --yes, or look at it with --dry-run.</source>
        <translation>ターミナルから実行されていないため、確認を求めることができません。--yes で変更を確定するか、--dry-run で変更内容を表示してください。</translation>
    </message>
    <message>
        <source>Another vq-tl4ctl is writing to an instrument: process %1.</source>
        <translation>別のvq-tl4ctlが測定器に書き込み中です(プロセス %1)。</translation>
    </message>
    <message>
        <source>show this help</source>
        <translation>このヘルプを表示する</translation>
    </message>
    <message>
        <source>Usage</source>
        <translation>使い方</translation>
    </message>
    <message>
        <source>Arguments</source>
        <translation>引数</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>オプション</translation>
    </message>
    <message>
        <source>Subcommands</source>
        <translation>コマンド</translation>
    </message>
    <message>
        <source>(required)</source>
        <translation>(必須)</translation>
    </message>
    <message>
        <source>OPTIONS</source>
        <translation>オプション</translation>
    </message>
    <message>
        <source>SUBCOMMAND</source>
        <translation>コマンド</translation>
    </message>
    <message>
        <source>Needs</source>
        <translation>同時に必要</translation>
    </message>
    <message>
        <source>Excludes</source>
        <translation>同時に指定不可</translation>
    </message>
    <message>
        <source>A subcommand is required</source>
        <translation>コマンドを指定してください</translation>
    </message>
    <message>
        <source>%1 is required</source>
        <translation>%1 を指定してください</translation>
    </message>
    <message>
        <source>%1 excludes %2</source>
        <translation>%1 と %2 は同時に指定できません</translation>
    </message>
    <message>
        <source>%1 requires %2</source>
        <translation>%1 には %2 の指定が必要です</translation>
    </message>
    <message>
        <source>The following arguments were not expected: %1</source>
        <translation>次の引数は指定できません: %1</translation>
    </message>
    <message>
        <source>%1: a value is missing</source>
        <translation>%1: 値を指定してください</translation>
    </message>
    <message>
        <source>%1: it may be given only once</source>
        <translation>%1: 指定できるのは1回だけです</translation>
    </message>
    <message>
        <source>--%1 takes no value</source>
        <translation>--%1 に値は指定できません</translation>
    </message>
    <message>
        <source>%1: %2 is none of %3</source>
        <translation>%1: %2 は指定できません(次のいずれか: %3)</translation>
    </message>
    <message>
        <source>Run with %1 for more information.</source>
        <translation>詳しくは %1 を付けて実行してください。</translation>
    </message>
    <message>
        <source>the journal, in place of the usual one</source>
        <translation>履歴ファイル(省略時は標準のもの)</translation>
    </message>
    <message>
        <source>end what an earlier run left unfinished, and prove it</source>
        <translation>以前の実行が残した未完了の書き込みを完了させ、検証する</translation>
    </message>
    <message>
        <source>find out whether instruments hold what was written to them last</source>
        <translation>最後に書き込んだ内容を測定器が保持しているかを調べる</translation>
    </message>
    <message>
        <source>all attached instruments, and all that were written to</source>
        <translation>接続されているすべての測定器と、書き込んだすべての測定器</translation>
    </message>
    <message>
        <source>number of a run</source>
        <translation>実行の番号</translation>
    </message>
    <message>
        <source>list what was done</source>
        <translation>実行の履歴を一覧表示する</translation>
    </message>
    <message>
        <source>no run before that date or time</source>
        <translation>この日付または時刻より前の実行を除く</translation>
    </message>
    <message>
        <source>show all of a run</source>
        <translation>実行の内容をすべて表示する</translation>
    </message>
    <message>
        <source>write what an instrument held before a run to a file</source>
        <translation>実行前に測定器が保持していた内容をファイルに保存する</translation>
    </message>
    <message>
        <source>the file; one that is there is not written over</source>
        <translation>保存先のファイル(既存のファイルは上書きしない)</translation>
    </message>
    <message>
        <source>%1 is not a journal of vq-tl4ctl.</source>
        <translation>%1 はvq-tl4ctlの履歴ファイルではありません。</translation>
    </message>
    <message>
        <source>The journal %1 is read-only.</source>
        <translation>履歴ファイル %1 は読み取り専用です。</translation>
    </message>
    <message>
        <source>The journal %1 has version %2, and this program knows versions up to %3: it was made by a newer one.</source>
        <translation>履歴ファイル %1 のバージョンは %2 ですが、このプログラムが対応するのは %3 までです。新しいプログラムで作成されたものです。</translation>
    </message>
    <message>
        <source>The journal %1 is damaged: %2</source>
        <translation>履歴ファイル %1 が壊れています: %2</translation>
    </message>
    <message>
        <source>The journal %1 cannot be used: %2</source>
        <translation>履歴ファイル %1 を使用できません: %2</translation>
    </message>
    <message>
        <source>  The state before is in %1</source>
        <translation>  変更前の状態: %1</translation>
    </message>
    <message>
        <source>(no answer)</source>
        <translation>(応答なし)</translation>
    </message>
    <message>
        <source>  %1  looked at again: %2</source>
        <translation>  %1  再確認: %2</translation>
    </message>
    <message>
        <source>Run:           %1</source>
        <translation>実行:            %1</translation>
    </message>
    <message>
        <source>Command:       %1</source>
        <translation>コマンド:        %1</translation>
    </message>
    <message>
        <source>Began:         %1</source>
        <translation>開始:            %1</translation>
    </message>
    <message>
        <source>Ended:         %1</source>
        <translation>終了:            %1</translation>
    </message>
    <message>
        <source>Exit status:   %1</source>
        <translation>終了ステータス:  %1</translation>
    </message>
    <message>
        <source>User, host:    %1</source>
        <translation>ユーザー、ホスト:%1</translation>
    </message>
    <message>
        <source>vq-tl4ctl:     %1</source>
        <translation>vq-tl4ctl:       %1</translation>
    </message>
    <message>
        <source>Library:       %1</source>
        <translation>ライブラリー:    %1</translation>
    </message>
    <message>
        <source>Its SHA-256:   %1</source>
        <translation>そのSHA-256:     %1</translation>
    </message>
    <message>
        <source>Input (%1): %2, SHA-256 %3</source>
        <translation>入力(%1): %2、SHA-256 %3</translation>
    </message>
    <message>
        <source>There is no journal yet: %1</source>
        <translation>履歴ファイルはまだありません: %1</translation>
    </message>
    <message>
        <source>The journal has no run %1.</source>
        <translation>履歴に実行 %1 はありません。</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is no date: write it as 2026-11-20, or with a time as 2026-11-20T09:30:00.</source>
        <translation>&quot;%1&quot; は日付ではありません。2026-11-20、または時刻を付けて2026-11-20T09:30:00のように指定してください。</translation>
    </message>
    <message>
        <source>Run %1 has no snapshot of instrument %2: nothing was written to it.</source>
        <translation>実行 %1 に測定器 %2 のスナップショットはありません。この測定器には書き込んでいません。</translation>
    </message>
    <message>
        <source>%1 is there already, and stays as it is.</source>
        <translation>%1 はすでに存在するため、上書きしません。</translation>
    </message>
    <message>
        <source>%1 answers what was wanted. It is written once more, so that it is in its memory.</source>
        <translation>%1 は書き込む予定の内容を応答しています。メモリーに確実に保存するため、もう一度書き込みます。</translation>
    </message>
    <message>
        <source>%1 answers the old state. It is written once more, so that it is in its memory.</source>
        <translation>%1 は変更前の内容を応答しています。メモリーに確実に保存するため、もう一度書き込みます。</translation>
    </message>
    <message>
        <source>%1 answers neither what was wanted nor the old state. The old state is put back.</source>
        <translation>%1 の応答は、書き込む予定の内容とも変更前の内容とも一致しません。変更前の状態に戻します。</translation>
    </message>
    <message>
        <source>The earlier run ended before anything was written.</source>
        <translation>以前の実行は、書き込みの前に終了しています。</translation>
    </message>
    <message>
        <source>The snapshot of the state before cannot be used.</source>
        <translation>変更前の状態のスナップショットを使用できません。</translation>
    </message>
    <message>
        <source>Every run has ended: there is nothing to recover.</source>
        <translation>すべての実行が完了しています。回復するものはありません。</translation>
    </message>
    <message>
        <source>Without a terminal nobody can be asked: confirm the recovery with --yes.</source>
        <translation>ターミナルから実行されていないため、確認を求めることができません。--yes で回復を確定してください。</translation>
    </message>
    <message>
        <source>%1: held. It answers what was written last, in every byte.</source>
        <translation>%1: held(保持)。最後に書き込んだ内容を全バイト応答しました。</translation>
    </message>
    <message>
        <source>%1: waits. Its network settings come into use when it has been switched off and on.</source>
        <translation>%1: waits(待機)。ネットワークの設定は、電源を入れ直すと有効になります。</translation>
    </message>
    <message>
        <source>%1: differs. It does not hold what was written last.</source>
        <translation>%1: differs(相違)。最後に書き込んだ内容を保持していません。</translation>
    </message>
    <message>
        <source>%1: unfinished. An earlier write did not end: run vq-tl4ctl recover.</source>
        <translation>%1: unfinished(未完了)。以前の書き込みが完了していません。vq-tl4ctl recover を実行してください。</translation>
    </message>
    <message>
        <source>%1: unwritten. The journal has no write to it.</source>
        <translation>%1: unwritten(書き込みなし)。履歴にこの測定器への書き込みはありません。</translation>
    </message>
    <message>
        <source>%1: its snapshot in the journal is damaged.</source>
        <translation>%1: 履歴のスナップショットが壊れています。</translation>
    </message>
    <message>
        <source>%1 was written to and is not attached: it is not looked at.</source>
        <translation>%1 には書き込みましたが、接続されていないため調べません。</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>値</translation>
    </message>
    <message>
        <source>Difference: &quot;%1&quot; less &quot;%2&quot;</source>
        <translation>差(「%1」−「%2」)</translation>
    </message>
    <message>
        <source>Implausible</source>
        <translation>誤りと思われる値</translation>
    </message>
    <message>
        <source>Index of the value</source>
        <translation>値の番号(0から)</translation>
    </message>
    <message>
        <source>write a run as a page to look at, print and file away</source>
        <translation>実行の報告書を、表示・印刷・保管できるページ(HTML)として保存する</translation>
    </message>
    <message>
        <source>White calibration plate</source>
        <translation>白色校正板</translation>
    </message>
    <message>
        <source>Ambient light adapter</source>
        <translation>環境光アダプター</translation>
    </message>
    <message>
        <source>%1: no numbers.</source>
        <translation>%1: 数値はありません。</translation>
    </message>
    <message>
        <source>%1: from %2 to %3.</source>
        <translation>%1: %2〜%3。</translation>
    </message>
    <message>
        <source>Before</source>
        <translation>変更前</translation>
    </message>
    <message>
        <source>Values that are no numbers are in the table, with their bits, and not in the plot.</source>
        <translation>数値でない値は、ビット列として表に示し、グラフには示しません。</translation>
    </message>
    <message>
        <source>%1: values over their index</source>
        <translation>%1: 番号順の値</translation>
    </message>
    <message>
        <source>Values that look wrong:</source>
        <translation>誤りと思われる値:</translation>
    </message>
    <message>
        <source>Values %1 to %2</source>
        <translation>値 %1〜%2</translation>
    </message>
    <message>
        <source>Index</source>
        <translation>番号</translation>
    </message>
    <message>
        <source>Difference</source>
        <translation>差</translation>
    </message>
    <message>
        <source>Wireless LAN</source>
        <translation>無線LAN</translation>
    </message>
    <message>
        <source>IP address</source>
        <translation>IPアドレス</translation>
    </message>
    <message>
        <source>Subnet mask</source>
        <translation>サブネットマスク</translation>
    </message>
    <message>
        <source>Default gateway</source>
        <translation>デフォルトゲートウェイ</translation>
    </message>
    <message>
        <source>Security key</source>
        <translation>セキュリティキー</translation>
    </message>
    <message>
        <source>Automatic power-off, minutes</source>
        <translation>オートパワーオフ時間(分)</translation>
    </message>
    <message>
        <source>Serial number of the white calibration plate</source>
        <translation>白色校正板のシリアル番号</translation>
    </message>
    <message>
        <source>Serial number of the ambient light adapter</source>
        <translation>環境光アダプターのシリアル番号</translation>
    </message>
    <message>
        <source>Instrument %1: %2</source>
        <translation>測定器 %1: %2</translation>
    </message>
    <message>
        <source>After</source>
        <translation>変更後</translation>
    </message>
    <message>
        <source>Wanted</source>
        <translation>変更内容</translation>
    </message>
    <message>
        <source>The run ended before a verdict.</source>
        <translation>結果が判定される前に、実行が終了しました。</translation>
    </message>
    <message>
        <source>What the write came to is not known yet: run vq-tl4ctl recover.</source>
        <translation>書き込みの結果はまだ不明です。vq-tl4ctl recover を実行してください。</translation>
    </message>
    <message>
        <source>A later run settled what the instrument holds.</source>
        <translation>測定器が保持する内容は、その後の実行で確定しました。</translation>
    </message>
    <message>
        <source>This run ended an earlier one&apos;s unfinished write.</source>
        <translation>この実行は、以前の実行が残した未完了の書き込みを完了させました。</translation>
    </message>
    <message>
        <source>Identity and course</source>
        <translation>測定器と経過</translation>
    </message>
    <message>
        <source>Serial number</source>
        <translation>シリアル番号</translation>
    </message>
    <message>
        <source>Firmware</source>
        <translation>ファームウェア</translation>
    </message>
    <message>
        <source>MAC address</source>
        <translation>MACアドレス</translation>
    </message>
    <message>
        <source>Wireless module</source>
        <translation>無線LANモジュール</translation>
    </message>
    <message>
        <source>fitted and enabled</source>
        <translation>あり(有効)</translation>
    </message>
    <message>
        <source>none, or disabled</source>
        <translation>なし、または無効</translation>
    </message>
    <message>
        <source>Began</source>
        <translation>開始</translation>
    </message>
    <message>
        <source>Ended</source>
        <translation>終了</translation>
    </message>
    <message>
        <source>Calls of the library</source>
        <translation>ライブラリーの呼び出し</translation>
    </message>
    <message>
        <source>%1, of which %2 write</source>
        <translation>%1 回(うち書き込み %2 回)</translation>
    </message>
    <message>
        <source>Warnings of the library</source>
        <translation>ライブラリーの警告</translation>
    </message>
    <message>
        <source>Snapshot of the state before</source>
        <translation>変更前の状態のスナップショット</translation>
    </message>
    <message>
        <source>The journal has no snapshot of this instrument: nothing was written to it.</source>
        <translation>履歴にこの測定器のスナップショットはありません。この測定器には書き込んでいません。</translation>
    </message>
    <message>
        <source>Changes</source>
        <translation>変更点</translation>
    </message>
    <message>
        <source>None.</source>
        <translation>なし。</translation>
    </message>
    <message>
        <source>Before and after</source>
        <translation>変更前と変更後</translation>
    </message>
    <message>
        <source>Before and wanted</source>
        <translation>変更前と変更内容</translation>
    </message>
    <message>
        <source>Field</source>
        <translation>項目</translation>
    </message>
    <message>
        <source>Calibration values alone, below.</source>
        <translation>校正値だけです(下記)。</translation>
    </message>
    <message>
        <source>Input</source>
        <translation>入力ファイル</translation>
    </message>
    <message>
        <source>Looked at again</source>
        <translation>その後の確認</translation>
    </message>
    <message>
        <source>What vq-tl4ctl verify found later</source>
        <translation>vq-tl4ctl verifyによる、その後の確認結果</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>日時</translation>
    </message>
    <message>
        <source>Outcome</source>
        <translation>結果</translation>
    </message>
    <message>
        <source>(none)</source>
        <translation>(なし)</translation>
    </message>
    <message>
        <source>Input files of the run</source>
        <translation>実行の入力ファイル</translation>
    </message>
    <message>
        <source>Input files for this instrument</source>
        <translation>この測定器の入力ファイル</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>種類</translation>
    </message>
    <message>
        <source>File</source>
        <translation>ファイル</translation>
    </message>
    <message>
        <source>Run</source>
        <translation>実行</translation>
    </message>
    <message>
        <source>Outcomes</source>
        <translation>結果</translation>
    </message>
    <message>
        <source>Command</source>
        <translation>コマンド</translation>
    </message>
    <message>
        <source>Exit status</source>
        <translation>終了ステータス</translation>
    </message>
    <message>
        <source>User</source>
        <translation>ユーザー</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>ホスト</translation>
    </message>
    <message>
        <source>Version of vq-tl4ctl</source>
        <translation>vq-tl4ctlのバージョン</translation>
    </message>
    <message>
        <source>Library</source>
        <translation>ライブラリー</translation>
    </message>
    <message>
        <source>SHA-256 of the library</source>
        <translation>ライブラリーのSHA-256</translation>
    </message>
    <message>
        <source>Journal</source>
        <translation>履歴ファイル</translation>
    </message>
    <message>
        <source>Report made</source>
        <translation>報告書の作成</translation>
    </message>
    <message>
        <source>Instruments</source>
        <translation>測定器</translation>
    </message>
    <message>
        <source>Changed fields</source>
        <translation>変更した項目数</translation>
    </message>
    <message>
        <source>Last verification</source>
        <translation>最後の確認</translation>
    </message>
    <message>
        <source>Recap</source>
        <translation>概要</translation>
    </message>
    <message>
        <source>VQ-TL4: report of run %1</source>
        <translation>VQ-TL4 報告書(実行 %1)</translation>
    </message>
    <message>
        <source>en</source>
        <extracomment>The code of the language that this is translated to.</extracomment>
        <translation>ja</translation>
    </message>
    <message>
        <source>Network settings</source>
        <translation>ネットワークの設定</translation>
    </message>
    <message>
        <source>Snapshot</source>
        <translation>スナップショット</translation>
    </message>
    <message>
        <source>Plan</source>
        <translation>計画表</translation>
    </message>
    <message>
        <source>%1, instrument %2</source>
        <translation>%1(測定器 %2)</translation>
    </message>
</context>
</TS>
