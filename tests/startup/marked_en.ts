<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>QObject</name>
    <message>
        <source>Spectrophotometer Configuration Tool VQ-TL4</source>
        <translation>en: Spectrophotometer Configuration Tool VQ-TL4</translation>
    </message>
    <message>
        <source>Failed to set default language.</source>
        <translation>en: Failed to set default language.</translation>
    </message>
    <message>
        <source>Failed to set select(japanese) language.</source>
        <translation>en: Failed to set select(japanese) language.</translation>
    </message>
    <message>
        <source>Failed to set select(English) language.</source>
        <translation>en: Failed to set select(English) language.</translation>
    </message>
    <message>
        <source>The measuring instruments is not connected.</source>
        <translation>en: The measuring instruments is not connected.</translation>
    </message>
</context>
<context>
    <name>LangSelectDialog</name>
    <message>
        <source>LanguageType</source>
        <translation>en: LanguageType</translation>
    </message>
</context>
<context>
    <name>InitSettingDialog</name>
    <message>
        <source>Connect</source>
        <translation>en: Connect</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>en: Close</translation>
    </message>
</context>
</TS>
