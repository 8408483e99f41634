<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>Meter</name>
    <message>
        <source>voltage</source>
        <translation>Spannung</translation>
    </message>
</context>
</TS>
