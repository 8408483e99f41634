<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
<context>
    <name>Meter</name>
    <message>
        <source>current</source>
        <translation>courant</translation>
    </message>
</context>
</TS>
