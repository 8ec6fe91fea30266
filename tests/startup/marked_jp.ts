<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP" sourcelanguage="en_US">
<context>
    <name>QObject</name>
    <message>
        <source>Spectrophotometer Configuration Tool VQ-TL4</source>
        <translation>jp: Spectrophotometer Configuration Tool VQ-TL4</translation>
    </message>
    <message>
        <source>Failed to set default language.</source>
        <translation>jp: Failed to set default language.</translation>
    </message>
    <message>
        <source>Failed to set select(japanese) language.</source>
        <translation>jp: Failed to set select(japanese) language.</translation>
    </message>
    <message>
        <source>Failed to set select(English) language.</source>
        <translation>jp: Failed to set select(English) language.</translation>
    </message>
    <message>
        <source>The measuring instruments is not connected.</source>
        <translation>jp: The measuring instruments is not connected.</translation>
    </message>
</context>
<context>
    <name>LangSelectDialog</name>
    <message>
        <source>LanguageType</source>
        <translation>jp: LanguageType</translation>
    </message>
</context>
<context>
    <name>InitSettingDialog</name>
    <message>
        <source>Connect</source>
        <translation>jp: Connect</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>jp: Disconnect</translation>
    </message>
</context>
</TS>
