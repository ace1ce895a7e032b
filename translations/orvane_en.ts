<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="ru_RU">
<context>
    <name>QObject</name>
    <message>
        <source>Не инициализировано</source>
        <translation>Not initialised</translation>
    </message>
    <message>
        <source>Не загружен драйвер %0</source>
        <translation>The driver %0 is not loaded</translation>
    </message>
    <message>
        <source>Инициализация %0 в оперативной памяти</source>
        <translation>Initialisation of %0 in main memory</translation>
    </message>
    <message>
        <source>Поддержка расширений %0</source>
        <translation>Extension support of %0</translation>
    </message>
    <message>
        <source>Инициализация %0</source>
        <translation>Initialisation of %0</translation>
    </message>
    <message>
        <source>проверьте корректность выражений в запросе</source>
        <translation>check that the expressions in the query are correct</translation>
    </message>
    <message>
        <source>Выражение</source>
        <translation>Expression</translation>
    </message>
</context>
<context>
    <name>orvane::Engine</name>
    <message>
        <source>Загрузка расширения %0: %1</source>
        <translation>Loading of extension %0: %1</translation>
    </message>
</context>
<context>
    <name>orvane::EngineExtension</name>
    <message>
        <source>Обработка расширения %0</source>
        <translation>Processing of extension %0</translation>
    </message>
    <message>
        <source>Ошибка при создании виртуальной таблицы</source>
        <translation>Error while creating the virtual table</translation>
    </message>
    <message>
        <source>Регистрация модуля базы данных: %0</source>
        <translation>Registration of database module: %0</translation>
    </message>
</context>
<context>
    <name>orvane::adaptor</name>
    <message>
        <source>нужно выражение, а не запрос</source>
        <translation>an expression is needed, not a query</translation>
    </message>
    <message>
        <source>Таблица %0, столбец %1: ожидается %2, а не «%3»</source>
        <translation>Table %0, column %1: expected %2, not &quot;%3&quot;</translation>
    </message>
    <message>
        <source>целое число от %0 до %1</source>
        <translation>a whole number from %0 to %1</translation>
    </message>
    <message>
        <source>число</source>
        <translation>a number</translation>
    </message>
    <message>
        <source>дата yyyy-MM-dd</source>
        <translation>a date yyyy-MM-dd</translation>
    </message>
    <message>
        <source>время hh:mm:ss.zzz</source>
        <translation>a time hh:mm:ss.zzz</translation>
    </message>
    <message>
        <source>дата и время yyyy-MM-dd hh:mm:ss.zzz</source>
        <translation>a date and time yyyy-MM-dd hh:mm:ss.zzz</translation>
    </message>
    <message>
        <source>текст</source>
        <translation>a text</translation>
    </message>
    <message>
        <source>геометрия</source>
        <translation>a geometry</translation>
    </message>
    <message>
        <source>В таблице %0 нет строки %1</source>
        <translation>The table %0 has no row %1</translation>
    </message>
    <message>
        <source>Таблица %0 закрыта</source>
        <translation>The table %0 is closed</translation>
    </message>
    <message>
        <source>Нет открытой таблицы %0</source>
        <translation>No table %0 is open</translation>
    </message>
    <message>
        <source>Номера строк назначает таблица</source>
        <translation>Row numbers are given by the table</translation>
    </message>
    <message>
        <source>сделан сейчас за %0 мс</source>
        <translation>made now in %0 ms</translation>
    </message>
    <message>
        <source>был</source>
        <translation>there before</translation>
    </message>
    <message>
        <source>просмотр всей таблицы</source>
        <translation>scan of the whole table</translation>
    </message>
    <message>
        <source>фильтр источника: %0</source>
        <translation>filter of the source: %0</translation>
    </message>
    <message>
        <source>поиск по номеру строки</source>
        <translation>look-up by row number</translation>
    </message>
    <message>
        <source>индекс по %0 (%1)</source>
        <translation>index on %0 (%1)</translation>
    </message>
    <message>
        <source>R-дерево по геометрии (%0)</source>
        <translation>R-tree of the geometry (%0)</translation>
    </message>
    <message>
        <source>пространственный индекс файла</source>
        <translation>spatial index of the file</translation>
    </message>
    <message>
        <source>индекс файла по %0</source>
        <translation>index of the file on %0</translation>
    </message>
    <message>
        <source>просмотр рамок геометрии</source>
        <translation>scan of the bounding boxes of the geometry</translation>
    </message>
    <message>
        <source>просмотр всей таблицы: у геометрий разные системы координат</source>
        <translation>scan of the whole table: the geometries have different coordinate systems</translation>
    </message>
    <message>
        <source>строки в памяти</source>
        <translation>rows kept in memory</translation>
    </message>
    <message>
        <source>%0, раз: %1</source>
        <translation>%0, %1 times</translation>
    </message>
    <message>
        <source>условие не выполнимо</source>
        <translation>no row can match</translation>
    </message>
    <message>
        <source>не понадобилась</source>
        <translation>not needed</translation>
    </message>
    <message>
        <source>строк %0, ожидалось %1 на раз</source>
        <translation>%0 rows, %1 expected each time</translation>
    </message>
    <message>
        <source>строк %0, ожидалось %1</source>
        <translation>%0 rows, %1 expected</translation>
    </message>
    <message>
        <source>, прочитано %0</source>
        <translation>, %0 read</translation>
    </message>
    <message>
        <source>нет индекса для %0: такое сравнение он не ускоряет</source>
        <translation>no index for %0: an index does not answer this comparison</translation>
    </message>
    <message>
        <source>нет индекса для %0: столбцы этого типа не индексируются</source>
        <translation>no index for %0: columns of this type are not indexed</translation>
    </message>
    <message>
        <source>нет индекса для %0: с начала такого образца в индексе не найти</source>
        <translation>no index for %0: the beginning of this pattern cannot be looked up</translation>
    </message>
    <message>
        <source>нет индекса для %0: тексты сравниваются не по Locale</source>
        <translation>no index for %0: the texts are not compared under Locale</translation>
    </message>
    <message>
        <source>нет индекса для %0: значение не того типа, что столбец</source>
        <translation>no index for %0: the value is not of the column&#x27;s type</translation>
    </message>
    <message>
        <source>нет индекса для %0: таблица мала</source>
        <translation>no index for %0: the table is small</translation>
    </message>
    <message>
        <source>нет индекса для %0: число строк неизвестно</source>
        <translation>no index for %0: the number of rows is not known</translation>
    </message>
    <message>
        <source>нет индекса для %0: просмотры пока дешевле (%1 мс), чем его сделать (%2 мс)</source>
        <translation>no index for %0: the scans so far were cheaper (%1 ms) than making it (%2 ms)</translation>
    </message>
    <message>
        <source>индекс по %0 не годится: он нашёл бы слишком много строк</source>
        <translation>the index on %0 is no use: it would find too many rows</translation>
    </message>
    <message>
        <source>нет индекса для %0: негде хранить</source>
        <translation>no index for %0: there is nowhere to keep it</translation>
    </message>
    <message>
        <source>нет индекса для %0: индексы выключены</source>
        <translation>no index for %0: indices are switched off</translation>
    </message>
    <message>
        <source>сортировка для %0</source>
        <translation>sorting for %0</translation>
    </message>
    <message>
        <source>запрос %0:</source>
        <translation>query %0:</translation>
    </message>
    <message>
        <source>подзапрос %0, заново для каждой строки:</source>
        <translation>subquery %0, again for every row:</translation>
    </message>
    <message>
        <source>подзапрос %0, один раз:</source>
        <translation>subquery %0, once:</translation>
    </message>
    <message>
        <source>%0: временный индекс SQLite</source>
        <translation>%0: temporary index of SQLite</translation>
    </message>
    <message>
        <source>одна строка без таблицы</source>
        <translation>one row without a table</translation>
    </message>
    <message>
        <source>%0: все строки</source>
        <translation>%0: all rows</translation>
    </message>
    <message>
        <source>Негде хранить индекс %0</source>
        <translation>There is nowhere to keep the index %0</translation>
    </message>
    <message>
        <source>индекс %0</source>
        <translation>index %0</translation>
    </message>
    <message>
        <source>Индекс %0: строк %1, %2 мс</source>
        <translation>Index %0: %1 rows, %2 ms</translation>
    </message>
    <message>
        <source>Индекс %0 не сделан: %1</source>
        <translation>The index %0 was not made: %1</translation>
    </message>
    <message>
        <source>R-дерево таблицы %0</source>
        <translation>R-tree of the table %0</translation>
    </message>
    <message>
        <source>выбирать может один Select из таблицы, без Group By и без функций по многим строкам</source>
        <translation>a selection is made by one Select from a table, without Group By and without functions over many rows</translation>
    </message>
    <message>
        <source>Таблица %0: %1</source>
        <translation>Table %0: %1</translation>
    </message>
    <message>
        <source>текст до %0 символов</source>
        <translation>text of up to %0 characters</translation>
    </message>
    <message>
        <source>строки сгруппированы в памяти</source>
        <translation>the rows are grouped in memory</translation>
    </message>
</context>
<context>
    <name>orvane::work</name>
    <message>
        <source>Запрос прерван</source>
        <translation>The query was interrupted</translation>
    </message>
</context>
<context>
    <name>orvane::dp::Table</name>
    <message>
        <source>таблица %0 открыта только для чтения</source>
        <translation>the table %0 is read-only</translation>
    </message>
    <message>
        <source>в таблице %0 нет записи %1</source>
        <translation>the table %0 has no feature %1</translation>
    </message>
    <message>
        <source>таблица %0 не отменяет часть правки</source>
        <translation>the table %0 does not take back a part of its edits</translation>
    </message>
</context>
<context>
    <name>orvane::engine</name>
    <message>
        <source>объект в системе координат %1 не переводится в %2, систему первого объекта группы</source>
        <translation>an object in the coordinate system %1 cannot be brought to %2, that of the first object of its group</translation>
    </message>
</context>
<context>
    <name>orvane::engine::EngineExpression</name>
    <message>
        <source>Ошибка создания таблицы для оценки выражений: </source>
        <translation>Error while creating the table for the evaluation of expressions: </translation>
    </message>
</context>
<context>
    <name>orvane::files::DatasetPool</name>
    <message>
        <source>открыто слишком много файлов</source>
        <translation>too many files are open</translation>
    </message>
    <message>
        <source>Не удалось открыть «%1»</source>
        <translation>Cannot open &quot;%1&quot;</translation>
    </message>
    <message>
        <source>файл пуст</source>
        <translation>the file is empty</translation>
    </message>
    <message>
        <source>в нём нет таблиц в известном формате</source>
        <translation>it has no tables in a known format</translation>
    </message>
    <message>
        <source>Не удалось открыть «%1»: это не файл и не папка</source>
        <translation>Cannot open &quot;%1&quot;: it is neither a file nor a folder</translation>
    </message>
    <message>
        <source>файл повреждён: фигура %1 другого вида, чем все; его можно только читать</source>
        <translation>the file is damaged: shape %1 is of another kind than the rest; it can only be read</translation>
    </message>
    <message>
        <source>«%1» только читается: его строки лежат в других файлах</source>
        <translation>&quot;%1&quot; can only be read: its rows lie in other files</translation>
    </message>
</context>
<context>
    <name>orvane::files::Confinement</name>
    <message>
        <source>«%1» ссылается на «%2», что читается только с --trust-references</source>
        <translation>&quot;%1&quot; refers to &quot;%2&quot;, which is read only with --trust-references</translation>
    </message>
</context>
<context>
    <name>orvane::files::FileOpening</name>
    <message>
        <source>«%1»: формат %2 отсылает к другим файлам или в сеть; он открывается с --trust-references</source>
        <translation>&quot;%1&quot;: the format %2 leads to other files or to the network; it opens with --trust-references</translation>
    </message>
</context>
<context>
    <name>orvane::files::References</name>
    <message>
        <source>«%1» ссылается на «%2», а это не файл из его папки; такие ссылки открывает --trust-references</source>
        <translation>&quot;%1&quot; refers to &quot;%2&quot;, which is not a file of its folder; --trust-references opens such references</translation>
    </message>
    <message>
        <source>Не удалось открыть «%1»: %2</source>
        <translation>Cannot open &quot;%1&quot;: %2</translation>
    </message>
    <message>
        <source>он слишком велик для файла со ссылками</source>
        <translation>it is too large for a file of references</translation>
    </message>
    <message>
        <source>нет файла «%1», на который он ссылается</source>
        <translation>there is no file &quot;%1&quot;, to which it refers</translation>
    </message>
    <message>
        <source>в нём нет таблиц в известном формате</source>
        <translation>it has no tables in a known format</translation>
    </message>
    <message>
        <source>ссылки в нём ведут по кругу</source>
        <translation>its references lead in a circle</translation>
    </message>
    <message>
        <source>источник «%1» не открывается: %2</source>
        <translation>the source &quot;%1&quot; does not open: %2</translation>
    </message>
</context>
<context>
    <name>orvane::files::FeatureWriter</name>
    <message>
        <source>Значение «%1» не подходит полю «%2»</source>
        <translation>The value &quot;%1&quot; does not fit the field &quot;%2&quot;</translation>
    </message>
</context>
<context>
    <name>orvane::files::FileSource</name>
    <message>
        <source>Не удалось открыть слой «%1» в «%2»: %3</source>
        <translation>Cannot open the layer &quot;%1&quot; in &quot;%2&quot;: %3</translation>
    </message>
    <message>
        <source>%1; нужное вне файла даёт --trust-references</source>
        <translation>%1; --trust-references gives what it wants beyond the file</translation>
    </message>
    <message>
        <source>Не удалось открыть «%1»: столбцов %2, а в таблице их не больше %3</source>
        <translation>Cannot open &quot;%1&quot;: it has %2 columns, a table has %3 at most</translation>
    </message>
    <message>
        <source>«%1» не называет своей кодировки, похоже на %2; другая называется так: «%1|encoding=windows-1251»</source>
        <translation>&quot;%1&quot; does not name its character set, it looks like %2; another one is named so: &quot;%1|encoding=windows-1251&quot;</translation>
    </message>
    <message>
        <source>В «%1» нет слоя «%2», есть: %3</source>
        <translation>&quot;%1&quot; has no layer &quot;%2&quot;; there are: %3</translation>
    </message>
    <message>
        <source>В «%1» нет таблиц</source>
        <translation>&quot;%1&quot; has no tables</translation>
    </message>
</context>
<context>
    <name>orvane::files::LayerEditor</name>
    <message>
        <source>Архив «%1» можно только читать</source>
        <translation>The archive &quot;%1&quot; can only be read</translation>
    </message>
    <message>
        <source>Не удалось добавить запись в «%1»</source>
        <translation>Cannot add a feature to &quot;%1&quot;</translation>
    </message>
    <message>
        <source>Не удалось изменить запись в «%1»</source>
        <translation>Cannot change a feature of &quot;%1&quot;</translation>
    </message>
    <message>
        <source>Не удалось удалить запись из «%1»</source>
        <translation>Cannot delete a feature of &quot;%1&quot;</translation>
    </message>
    <message>
        <source>Слой «%1» изменил своё строение, откройте файл заново</source>
        <translation>The layer &quot;%1&quot; has changed its columns; open the file again</translation>
    </message>
    <message>
        <source>Формат слоя «%1» не позволяет такую правку</source>
        <translation>The format of the layer &quot;%1&quot; does not allow this edit</translation>
    </message>
    <message>
        <source>В «%1» нет записи %2</source>
        <translation>&quot;%1&quot; has no feature %2</translation>
    </message>
    <message>
        <source>Столбец «%1»: нужно значение</source>
        <translation>Column &quot;%1&quot;: a value is needed</translation>
    </message>
    <message>
        <source>Столбец «%1»: значение «%2» уже есть</source>
        <translation>Column &quot;%1&quot;: the value &quot;%2&quot; is there already</translation>
    </message>
    <message>
        <source>В этом формате запись без геометрии пропадает</source>
        <translation>In this format a row without a geometry is lost</translation>
    </message>
</context>
<context>
    <name>orvane::files::LayerScan</name>
    <message>
        <source>«%1»: ошибка чтения данных</source>
        <translation>&quot;%1&quot;: the data cannot be read</translation>
    </message>
    <message>
        <source>файл повреждён: обещано строк %1, а нет ни одной</source>
        <translation>the file is damaged: it promises %1 rows and has none</translation>
    </message>
</context>
<context>
    <name>orvane::files::LayerSource</name>
    <message>
        <source>Слой «%1» изменил своё строение, откройте файл заново</source>
        <translation>The layer &quot;%1&quot; has changed its columns; open the file again</translation>
    </message>
</context>
<context>
    <name>orvane::files::ResultFile</name>
    <message>
        <source>файлы пишутся с окончаниями %1</source>
        <translation>files are written with the endings %1</translation>
    </message>
    <message>
        <source>файл уже есть; с --overwrite он заменяется</source>
        <translation>the file exists; --overwrite replaces it</translation>
    </message>
    <message>
        <source>имя занято не файлом</source>
        <translation>the name is taken by something else than a file</translation>
    </message>
    <message>
        <source>таблица уже есть</source>
        <translation>the table exists</translation>
    </message>
</context>
<context>
    <name>orvane::files::ResultLayer</name>
    <message>
        <source>имена столбцов в этом формате не длиннее %1 байт: %2</source>
        <translation>column names have at most %1 bytes in this format: %2</translation>
    </message>
    <message>
        <source>«%1» → «%2»</source>
        <translation>&quot;%1&quot; → &quot;%2&quot;</translation>
    </message>
    <message>
        <source>столбец «%1»: текстов, от которых осталось начало в %2 байт: %3</source>
        <translation>column &quot;%1&quot;: texts of which the first %2 bytes were kept: %3</translation>
    </message>
    <message>
        <source>в ответе нет геометрии, без неё файл .%1 не бывает</source>
        <translation>the result has no geometry, and a .%1 file cannot be without</translation>
    </message>
    <message>
        <source>файл не создаётся</source>
        <translation>the file cannot be created</translation>
    </message>
    <message>
        <source>слой не создаётся</source>
        <translation>the layer cannot be created</translation>
    </message>
    <message>
        <source>поле «%1» не создаётся</source>
        <translation>the field &quot;%1&quot; cannot be created</translation>
    </message>
    <message>
        <source>геометрия не записывается</source>
        <translation>a geometry cannot be written</translation>
    </message>
    <message>
        <source>запись не добавляется</source>
        <translation>a row cannot be added</translation>
    </message>
    <message>
        <source>слой не записывается</source>
        <translation>the layer cannot be written</translation>
    </message>
    <message>
        <source>прервано</source>
        <translation>interrupted</translation>
    </message>
</context>
<context>
    <name>orvane::files::ResultRows</name>
    <message>
        <source>временный файл не создаётся</source>
        <translation>a temporary file cannot be created</translation>
    </message>
    <message>
        <source>временный файл не записывается</source>
        <translation>a temporary file cannot be written</translation>
    </message>
    <message>
        <source>временный файл не читается</source>
        <translation>a temporary file cannot be read</translation>
    </message>
    <message>
        <source>столбец «%1»: геометрия не переводится в систему координат «%2»</source>
        <translation>column &quot;%1&quot;: a geometry cannot be transformed to the coordinate system &quot;%2&quot;</translation>
    </message>
</context>
<context>
    <name>orvane::files::RecordReader</name>
    <message>
        <source>«%1»: %2</source>
        <translation>&quot;%1&quot;: %2</translation>
    </message>
    <message>
        <source>Неизвестная кодировка «%1»</source>
        <translation>Unknown character set &quot;%1&quot;</translation>
    </message>
    <message>
        <source>Не удалось открыть «%1»: %2</source>
        <translation>Cannot open &quot;%1&quot;: %2</translation>
    </message>
    <message>
        <source>кавычка в строке %1 не закрыта</source>
        <translation>a quotation mark in line %1 is not closed</translation>
    </message>
    <message>
        <source>запись в строке %1 длиннее %2 байт</source>
        <translation>the record in line %1 is longer than %2 bytes</translation>
    </message>
    <message>
        <source>ошибка чтения данных</source>
        <translation>the data cannot be read</translation>
    </message>
    <message>
        <source>текст не в UTF-8: укажите кодировку, например «%1|encoding=windows-1251»</source>
        <translation>the text is not UTF-8: name its character set, for example &quot;%1|encoding=windows-1251&quot;</translation>
    </message>
</context>
<context>
    <name>orvane::files::TextEditor</name>
    <message>
        <source>Архив «%1» можно только читать</source>
        <translation>The archive &quot;%1&quot; can only be read</translation>
    </message>
    <message>
        <source>Файл «%1» не в UTF-8, его можно только читать</source>
        <translation>The file &quot;%1&quot; is not in UTF-8, it can only be read</translation>
    </message>
    <message>
        <source>Файл «%1» можно только читать</source>
        <translation>The file &quot;%1&quot; can only be read</translation>
    </message>
    <message>
        <source>Не удалось записать «%1»: %2</source>
        <translation>Cannot write &quot;%1&quot;: %2</translation>
    </message>
    <message>
        <source>В «%1» нет записи %2</source>
        <translation>&quot;%1&quot; has no record %2</translation>
    </message>
    <message>
        <source>В «%1» нет имён столбцов: без числа в первой строке она была бы принята за них</source>
        <translation>&quot;%1&quot; has no names of columns: without a number in the first line it would be taken for them</translation>
    </message>
</context>
<context>
    <name>orvane::files::TextTable</name>
    <message>
        <source>«%1»: %2</source>
        <translation>&quot;%1&quot;: %2</translation>
    </message>
    <message>
        <source>Не удалось открыть «%1»: файл пуст</source>
        <translation>Cannot open &quot;%1&quot;: the file is empty</translation>
    </message>
    <message>
        <source>в нём нет таблиц</source>
        <translation>it has no tables</translation>
    </message>
    <message>
        <source>таблица изменила своё строение, откройте файл заново</source>
        <translation>the table has changed its columns; open the file again</translation>
    </message>
</context>
<context>
    <name>orvane::geometry</name>
    <message>
        <source>нужны матрица из девяти 0, 1, 2, F и шаблон из них, T и *</source>
        <translation>expected a matrix of nine 0, 1, 2, F and a pattern of these, T and *</translation>
    </message>
    <message>
        <source>нужна ISO-2019, ISO-2018, ISO-2015, GDAL или ESRI</source>
        <translation>expected ISO-2019, ISO-2018, ISO-2015, GDAL or ESRI</translation>
    </message>
    <message>
        <source>число %0 не помещается в эту запись.</source>
        <translation>the number %0 does not fit into this form.</translation>
    </message>
    <message>
        <source>это не сжатая ломаная.</source>
        <translation>this is no encoded polyline.</translation>
    </message>
    <message>
        <source>строка %0, знак %1: %2.</source>
        <translation>line %0, character %1: %2.</translation>
    </message>
    <message>
        <source>нужно число от 0 до 3</source>
        <translation>expected a number from 0 to 3</translation>
    </message>
    <message>
        <source>пустой геометрии в этой записи нет</source>
        <translation>this form has no empty geometry</translation>
    </message>
    <message>
        <source>нужна линия</source>
        <translation>expected a line</translation>
    </message>
    <message>
        <source>место вне земного шара</source>
        <translation>the place is beyond the globe</translation>
    </message>
    <message>
        <source>нужна линия из прямых отрезков</source>
        <translation>expected a line of straight segments</translation>
    </message>
    <message>
        <source>нужна точка</source>
        <translation>expected a point</translation>
    </message>
    <message>
        <source>у линии нет такого положения</source>
        <translation>the line has no such position</translation>
    </message>
    <message>
        <source>у линии осталось бы меньше двух положений</source>
        <translation>the line would have fewer than two positions left</translation>
    </message>
    <message>
        <source>нужна матрица</source>
        <translation>expected a matrix</translation>
    </message>
    <message>
        <source>у геометрии нет координатной системы</source>
        <translation>the geometry has no coordinate system</translation>
    </message>
    <message>
        <source>Неизвестная единица длины «%0». Известные единицы: %1.</source>
        <translation>Unknown unit of length &quot;%0&quot;. Known units: %1.</translation>
    </message>
    <message>
        <source>Неизвестная единица площади «%0». Известные единицы: %1.</source>
        <translation>Unknown unit of area &quot;%0&quot;. Known units: %1.</translation>
    </message>
    <message>
        <source>Единица «%0» здесь не имеет смысла: мера на эллипсоиде не угловая.</source>
        <translation>The unit &quot;%0&quot; has no meaning here: a measure on the ellipsoid is no angle.</translation>
    </message>
    <message>
        <source>Единица «%0» здесь не имеет смысла: координаты угловые; годятся градусы или мера на эллипсоиде.</source>
        <translation>The unit &quot;%0&quot; has no meaning here: the coordinates are angles; use degrees or a spherical measure.</translation>
    </message>
    <message>
        <source>Единица «%0» здесь не имеет смысла: координаты не угловые.</source>
        <translation>The unit &quot;%0&quot; has no meaning here: the coordinates are no angles.</translation>
    </message>
    <message>
        <source>Геометрии не приводятся к одной системе координат.</source>
        <translation>The geometries cannot be brought to one coordinate system.</translation>
    </message>
    <message>
        <source>У пустой геометрии нет расстояния до другой.</source>
        <translation>An empty geometry is at no distance from anything.</translation>
    </message>
    <message>
        <source>Для меры на эллипсоиде нужна система координат геометрии.</source>
        <translation>A spherical measure needs a geometry with a coordinate system.</translation>
    </message>
    <message>
        <source>У точки геометрии нет долготы и широты.</source>
        <translation>A position of the geometry has no longitude and latitude.</translation>
    </message>
    <message>
        <source>Координата геометрии не конечное число.</source>
        <translation>A coordinate of the geometry is not finite.</translation>
    </message>
    <message>
        <source>Параметр «%0»: вместо «%1» нужно %2.</source>
        <translation>Option &quot;%0&quot;: instead of &quot;%1&quot; it has to be %2.</translation>
    </message>
    <message>
        <source>Неизвестный параметр «%0». Известны: quad_segs, endcap, join, mitre_limit, side.</source>
        <translation>Unknown option &quot;%0&quot;. Known are: quad_segs, endcap, join, mitre_limit, side.</translation>
    </message>
    <message>
        <source>Результат был бы слишком велик.</source>
        <translation>The result would be too large.</translation>
    </message>
    <message>
        <source>Расстояние на эллипсоиде не может быть больше %0 м.</source>
        <translation>A distance on the ellipsoid cannot be more than %0 m here.</translation>
    </message>
    <message>
        <source>Одна сторона (side) есть только у линий.</source>
        <translation>Only lines have a single side.</translation>
    </message>
    <message>
        <source>знак %0: %1.</source>
        <translation>character %0: %1.</translation>
    </message>
    <message>
        <source>нужна «(» или EMPTY</source>
        <translation>expected &quot;(&quot; or EMPTY</translation>
    </message>
    <message>
        <source>нужна «,» или «)»</source>
        <translation>expected &quot;,&quot; or &quot;)&quot;</translation>
    </message>
    <message>
        <source>нужен вид геометрии</source>
        <translation>expected a kind of geometry</translation>
    </message>
    <message>
        <source>нужно число</source>
        <translation>expected a number</translation>
    </message>
    <message>
        <source>за геометрией есть ещё текст</source>
        <translation>there is more text after the geometry</translation>
    </message>
    <message>
        <source>у положения не столько чисел, сколько у других</source>
        <translation>the position has not as many numbers as others</translation>
    </message>
    <message>
        <source>кольцо не замкнуто</source>
        <translation>the ring is not closed</translation>
    </message>
    <message>
        <source>геометрии вложены слишком глубоко</source>
        <translation>geometries are nested too deep</translation>
    </message>
    <message>
        <source>у дуг нечётное число положений, от трёх</source>
        <translation>arcs take an odd number of positions, three at least</translation>
    </message>
    <message>
        <source>часть другого вида, чем должна быть</source>
        <translation>a part of another kind than it has to be</translation>
    </message>
    <message>
        <source>нет координатной системы с таким кодом</source>
        <translation>there is no coordinate system of this code</translation>
    </message>
    <message>
        <source>это не GeoJSON: %0.</source>
        <translation>this is no GeoJSON: %0.</translation>
    </message>
    <message>
        <source>нужен список координат</source>
        <translation>expected a list of coordinates</translation>
    </message>
    <message>
        <source>у положения не меньше двух чисел</source>
        <translation>a position has two numbers at least</translation>
    </message>
    <message>
        <source>координата не число</source>
        <translation>a coordinate is no number</translation>
    </message>
    <message>
        <source>неизвестная координатная система</source>
        <translation>unknown coordinate system</translation>
    </message>
    <message>
        <source>слишком длинный текст</source>
        <translation>the text is too long</translation>
    </message>
    <message>
        <source>нужна известная координатная система</source>
        <translation>expected a known coordinate system</translation>
    </message>
    <message>
        <source>нужна геометрия вида %0, а не %1.</source>
        <translation>expected a geometry of kind %0, not %1.</translation>
    </message>
    <message>
        <source>геометрия не имеет места в WGS 84</source>
        <translation>the geometry has no place in WGS 84</translation>
    </message>
    <message>
        <source>нужны конечные координаты</source>
        <translation>expected finite coordinates</translation>
    </message>
    <message>
        <source>нужно число от 0.0001 до 1</source>
        <translation>expected a number from 0.0001 to 1</translation>
    </message>
    <message>
        <source>У геометрий слишком много вершин.</source>
        <translation>The geometries have too many vertices.</translation>
    </message>
    <message>
        <source>нужно число больше 0</source>
        <translation>expected a number above zero</translation>
    </message>
    <message>
        <source>нужно число от 0 до 1</source>
        <translation>expected a number from 0 to 1</translation>
    </message>
    <message>
        <source>единицы есть только у координатных систем на плоскости</source>
        <translation>only coordinate systems of a plane have units here</translation>
    </message>
    <message>
        <source>В результате было бы больше %0 частей.</source>
        <translation>The result would have more than %0 parts.</translation>
    </message>
    <message>
        <source>Полигон строится из замкнутых линий.</source>
        <translation>A polygon is made of closed lines.</translation>
    </message>
    <message>
        <source>Полигон строится из замкнутых линий; эта линия не замкнута.</source>
        <translation>A polygon is made of closed lines; this one is not closed.</translation>
    </message>
    <message>
        <source>Граница полигона — одна замкнутая линия.</source>
        <translation>The border of a polygon is one closed line.</translation>
    </message>
    <message>
        <source>нужно число, не меньшее нуля</source>
        <translation>expected a number not below zero</translation>
    </message>
    <message>
        <source>нужны точки или линии</source>
        <translation>expected points or lines</translation>
    </message>
    <message>
        <source>нужно целое число, не меньшее 5</source>
        <translation>expected a whole number not below 5</translation>
    </message>
    <message>
        <source>нужно 1 (точки), 2 (линии) или 3 (полигоны)</source>
        <translation>expected 1 (points), 2 (lines) or 3 (polygons)</translation>
    </message>
    <message>
        <source>Нужна линия.</source>
        <translation>A line is needed.</translation>
    </message>
    <message>
        <source>У геометрии нет значений m.</source>
        <translation>The geometry has no values of m.</translation>
    </message>
    <message>
        <source>нужно число от 0 до 1000000</source>
        <translation>expected a number from 0 to 1000000</translation>
    </message>
    <message>
        <source>нужно число не меньше начала</source>
        <translation>expected a number not less than the begin</translation>
    </message>
    <message>
        <source>нужна линия с растущими m</source>
        <translation>expected a line with growing m</translation>
    </message>
    <message>
        <source>нужен угол не больше миллиона градусов</source>
        <translation>expected an angle of a million degrees at the most</translation>
    </message>
    <message>
        <source>нужно число от 0.001 до 120</source>
        <translation>expected a number from 0.001 to 120</translation>
    </message>
    <message>
        <source>нужно обозначение ячейки GARS</source>
        <translation>expected the code of a cell of GARS</translation>
    </message>
    <message>
        <source>%0: аргумент %1: %2.</source>
        <translation>%0: argument %1: %2.</translation>
    </message>
    <message>
        <source>нужна геометрия</source>
        <translation>expected a geometry</translation>
    </message>
    <message>
        <source>нужно целое число</source>
        <translation>expected a whole number</translation>
    </message>
    <message>
        <source>нужен текст</source>
        <translation>expected a text</translation>
    </message>
    <message>
        <source>нужны двоичные данные</source>
        <translation>expected a blob</translation>
    </message>
    <message>
        <source>геометрия не имеет места в координатной системе другой</source>
        <translation>the geometry has no place in the coordinate system of the other</translation>
    </message>
</context>
<context>
    <name>orvane::shell::Shell</name>
    <message>
        <source>эта сборка не открывает базы PostgreSQL</source>
        <translation>this build does not open PostgreSQL databases</translation>
    </message>
    <message>
        <source>геометрия не переводится в WGS 84 из %0, а geojson иных координат не знает</source>
        <translation>the geometry cannot be transformed from %0 into WGS 84, and geojson knows no other coordinates</translation>
    </message>
    <message>
        <source>%0: значения «%1» нет, возможны %2</source>
        <translation>%0: there is no value &quot;%1&quot;, possible are %2</translation>
    </message>
    <message>
        <source>--table: ожидается ИМЯ=ФАЙЛ или ИМЯ=ФАЙЛ|СЛОЙ, а не «%0»</source>
        <translation>--table: expected NAME=FILE or NAME=FILE|LAYER, not &quot;%0&quot;</translation>
    </message>
    <message>
        <source>--select: ожидается ТАБЛИЦА=НОМЕР,НОМЕР,... или Select, а не «%0»</source>
        <translation>--select: expected TABLE=ID,ID,... or Select, not &quot;%0&quot;</translation>
    </message>
    <message>
        <source>справка: orvane --help</source>
        <translation>see orvane --help</translation>
    </message>
    <message>
        <source>неизвестные параметры: %0; %1</source>
        <translation>unknown arguments: %0; %1</translation>
    </message>
    <message>
        <source>параметру %0 нужно одно значение; %1</source>
        <translation>the option %0 needs one value; %1</translation>
    </message>
    <message>
        <source>Запросы SQL к таблицам и слоям из файлов любых форматов.
Код завершения: 0 выполнено, 1 ошибка в запросе (остальные не выполняются), 2 неверный вызов или файл не открывается, 130 прервано, 143 завершено сигналом.</source>
        <translation>SQL queries over the tables and layers of files of every format.
Exit status: 0 done, 1 a statement failed (the rest are not run), 2 wrong usage or a file that does not open, 130 interrupted, 143 terminated.</translation>
    </message>
    <message>
        <source>открыть каждый слой файла под его именем</source>
        <translation>open every layer of the file under its own name</translation>
    </message>
    <message>
        <source>открыть один слой под именем NAME</source>
        <translation>open one layer under NAME</translation>
    </message>
    <message>
        <source>выполнить запрос</source>
        <translation>run a statement</translation>
    </message>
    <message>
        <source>выполнить запросы из файла</source>
        <translation>run statements from a file</translation>
    </message>
    <message>
        <source>вид ответа</source>
        <translation>form of the result</translation>
    </message>
    <message>
        <source>без строки заголовков</source>
        <translation>without the line of column names</translation>
    </message>
    <message>
        <source>чем обозначить NULL в table и csv</source>
        <translation>how NULL is shown in table and csv</translation>
    </message>
    <message>
        <source>показать текст для SQLite, а не выполнять его</source>
        <translation>print the SQLite text instead of running it</translation>
    </message>
    <message>
        <source>запросы уже написаны для SQLite</source>
        <translation>the text is SQLite SQL already: run it untranslated</translation>
    </message>
    <message>
        <source>текущая выборка: строки таблицы или то, что находит запрос</source>
        <translation>the current selection: rows of a table, or what a query finds</translation>
    </message>
    <message>
        <source>язык сообщений и порядок сравнения текстов</source>
        <translation>language of the messages and order of texts</translation>
    </message>
    <message>
        <source>запоминать ли разобранные геометрии</source>
        <translation>whether decoded geometries are remembered</translation>
    </message>
    <message>
        <source>с какого уровня показывать журнал</source>
        <translation>lowest level of the log to show</translation>
    </message>
    <message>
        <source>время каждого запроса в стандартный вывод ошибок</source>
        <translation>times of each statement on standard error</translation>
    </message>
    <message>
        <source>показать версию</source>
        <translation>show the version</translation>
    </message>
    <message>
        <source>показать эту справку</source>
        <translation>show this help</translation>
    </message>
    <message>
        <source>ответ не записывается</source>
        <translation>the result cannot be written</translation>
    </message>
    <message>
        <source>временный файл не создаётся</source>
        <translation>no temporary file can be made</translation>
    </message>
    <message>
        <source>временный файл не записывается</source>
        <translation>the temporary file cannot be written</translation>
    </message>
    <message>
        <source>временный файл не читается</source>
        <translation>the temporary file cannot be read</translation>
    </message>
    <message>
        <source>строка %0, столбец %1: %2</source>
        <translation>line %0, column %1: %2</translation>
    </message>
    <message>
        <source>%0 строк, %1 с</source>
        <translation>%0 rows, %1 s</translation>
    </message>
    <message>
        <source>%0: выберите один из слоёв: %1</source>
        <translation>%0: choose one of the layers: %1</translation>
    </message>
    <message>
        <source>имя таблицы «%0» уже занято</source>
        <translation>the table name &quot;%0&quot; is taken</translation>
    </message>
    <message>
        <source>--select: нет таблицы «%0»</source>
        <translation>--select: there is no table &quot;%0&quot;</translation>
    </message>
    <message>
        <source>--select: нет таблицы «%0»; возможно, имелось в виду «%1»</source>
        <translation>--select: there is no table &quot;%0&quot;; did you mean &quot;%1&quot;?</translation>
    </message>
    <message>
        <source>%0 здесь недопустим: строки нумеруются после отбора; чтобы отобрать по номеру, пронумеруйте их во вложенном запросе</source>
        <translation>%0 cannot be used here: the rows are numbered once they are chosen; to choose by number, number them in a subquery</translation>
    </message>
    <message>
        <source>функция %1 здесь недопустима: она считает по многим строкам</source>
        <translation>the function %1 cannot be used here: it is calculated over many rows</translation>
    </message>
    <message>
        <source>нет порядка сравнения «%1»</source>
        <translation>there is no collation &quot;%1&quot;</translation>
    </message>
    <message>
        <source>нет окна «%1»</source>
        <translation>there is no window &quot;%1&quot;</translation>
    </message>
    <message>
        <source>функция %1 не может быть оконной</source>
        <translation>%1 may not be used as a window function</translation>
    </message>
    <message>
        <source>Filter недопустим с функцией %1: она не считает по многим строкам</source>
        <translation>Filter cannot be used with %1: it is not calculated over many rows</translation>
    </message>
    <message>
        <source>с Distinct функция принимает ровно один аргумент</source>
        <translation>with Distinct a function takes exactly one argument</translation>
    </message>
    <message>
        <source>Distinct недопустим в оконной функции</source>
        <translation>Distinct cannot be used in a window function</translation>
    </message>
    <message>
        <source>запросы по обе стороны %1 дают разное число столбцов</source>
        <translation>the queries on both sides of %1 give different numbers of columns</translation>
    </message>
    <message>
        <source>вложенный запрос даёт столбцов: %1, здесь нужно другое число</source>
        <translation>the subquery gives %1 columns, here another number is needed</translation>
    </message>
    <message>
        <source>составное значение здесь недопустимо</source>
        <translation>a row value cannot be used here</translation>
    </message>
    <message>
        <source>столбца с таким номером в запросе нет (%1 выражение сортировки или группы)</source>
        <translation>the query has no column of that number (%1 term of Order By or Group By)</translation>
    </message>
    <message>
        <source>%1 выражение сортировки должно быть столбцом результата</source>
        <translation>the %1 term of Order By has to be a column of the result</translation>
    </message>
    <message>
        <source>столбец «%1» из Using есть не в обеих таблицах</source>
        <translation>the column &quot;%1&quot; of Using is not in both tables</translation>
    </message>
    <message>
        <source>Having без Group By и без функций по многим строкам</source>
        <translation>Having without Group By and without a function over many rows</translation>
    </message>
    <message>
        <source>таблица «%1» только для чтения</source>
        <translation>the table &quot;%1&quot; is read-only</translation>
    </message>
    <message>
        <source>таблица «%1» уже есть</source>
        <translation>there is a table &quot;%1&quot; already</translation>
    </message>
    <message>
        <source>число значений (%1) не равно числу столбцов</source>
        <translation>the number of values (%1) is not the number of columns</translation>
    </message>
    <message>
        <source>звёздочка требует таблицы после From</source>
        <translation>an asterisk needs a table after From</translation>
    </message>
    <message>
        <source>выражение слишком велико</source>
        <translation>the expression is too large</translation>
    </message>
    <message>
        <source>в одном запросе можно соединить не больше %1 таблиц</source>
        <translation>a query can join at most %1 tables</translation>
    </message>
    <message>
        <source>запрос «%1» ссылается на самого себя</source>
        <translation>the query &quot;%1&quot; refers to itself</translation>
    </message>
    <message>
        <source>сумма целых чисел не помещается в 64 бита</source>
        <translation>a sum of whole numbers does not fit into 64 bits</translation>
    </message>
    <message>
        <source>деление на ноль</source>
        <translation>division by zero</translation>
    </message>
    <message>
        <source>именованный запрос «%1» не таблица: строки меняются в таблицах</source>
        <translation>the view &quot;%1&quot; is no table: rows are changed in tables</translation>
    </message>
    <message>
        <source>нет таблицы «%0», которую читает именованный запрос</source>
        <translation>there is no table &quot;%0&quot;, which a view reads</translation>
    </message>
    <message>
        <source>именованный запрос</source>
        <translation>named query</translation>
    </message>
    <message>
        <source>Round(x, 2) округляет до числа, кратного двум; до двух знаков — RoundBy(x, 2)</source>
        <translation>Round(x, 2) rounds to a multiple of 2; RoundBy(x, 2) rounds to two decimal places</translation>
    </message>
    <message>
        <source>нет именованного запроса «%1»</source>
        <translation>there is no view &quot;%1&quot;</translation>
    </message>
    <message>
        <source>нет точки возврата «%1»</source>
        <translation>there is no savepoint &quot;%1&quot;</translation>
    </message>
    <message>
        <source>транзакция уже начата: её завершает Commit или Rollback</source>
        <translation>a transaction has begun already: Commit or Rollback ends it</translation>
    </message>
    <message>
        <source>транзакция не начата: её начинает Begin</source>
        <translation>no transaction has begun: Begin begins one</translation>
    </message>
    <message>
        <source>в именованном запросе нет места параметрам</source>
        <translation>a view has no room for parameters</translation>
    </message>
    <message>
        <source>Generate_Series: нужны первое и последнее значение</source>
        <translation>Generate_Series: expected the first and the last value</translation>
    </message>
    <message>
        <source>Generate_Series: нужны конечные числа и шаг, отличный от нуля</source>
        <translation>Generate_Series: expected finite numbers and a step that is not 0</translation>
    </message>
    <message>
        <source>Generate_Series: нужны два числа или две даты</source>
        <translation>Generate_Series: expected two numbers or two dates</translation>
    </message>
    <message>
        <source>Generate_Series: нужен шаг вроде &apos;1 day&apos; или &apos;3 months&apos;</source>
        <translation>Generate_Series: expected a step such as &apos;1 day&apos; or &apos;3 months&apos;</translation>
    </message>
    <message>
        <source>Generate_Series: шаг равен нулю</source>
        <translation>Generate_Series: the step is 0</translation>
    </message>
    <message>
        <source>транзакция отменена: её изменения взяты назад</source>
        <translation>the transaction is undone: its changes are taken back</translation>
    </message>
    <message>
        <source>транзакция не завершена: без Commit её изменения не сохранены</source>
        <translation>the transaction was not ended: without Commit its changes are not kept</translation>
    </message>
    <message>
        <source>регулярное выражение требует на одном тексте больше миллиона шагов: упростите его</source>
        <translation>the regular expression takes more than a million steps on one text: make it simpler</translation>
    </message>
    <message>
        <source>ошибка в регулярном выражении: %1</source>
        <translation>fault in the regular expression: %1</translation>
    </message>
    <message>
        <source>неизвестная часть даты: %1</source>
        <translation>unknown part of a date: %1</translation>
    </message>
    <message>
        <source>доля для Percentile лежит между 0 и 1: девяносто процентов пишутся 0.9</source>
        <translation>the share for Percentile lies between 0 and 1: ninety percent are written 0.9</translation>
    </message>
    <message>
        <source>доля для Percentile должна быть одной на всю группу</source>
        <translation>the share for Percentile has to be the same within a group</translation>
    </message>
    <message>
        <source>частное не помещается в 64 бита</source>
        <translation>the quotient does not fit into 64 bits</translation>
    </message>
    <message>
        <source>степень слишком велика или не определена</source>
        <translation>the power is too large or not defined</translation>
    </message>
    <message>
        <source>сумма слишком велика</source>
        <translation>the sum is too large</translation>
    </message>
    <message>
        <source>ширина в шаблоне функции %1 больше десяти миллионов</source>
        <translation>a width in the pattern of the function %1 is more than ten million</translation>
    </message>
    <message>
        <source>корень извлекается только из числа, которое не меньше нуля</source>
        <translation>a square root needs a number that is not below zero</translation>
    </message>
    <message>
        <source>место, с которого ищет InStr, должно быть не меньше 1</source>
        <translation>the place from which InStr searches must be at least 1</translation>
    </message>
    <message>
        <source>номер вхождения для InStr должен быть не меньше 1</source>
        <translation>the number of the occurrence for InStr must be at least 1</translation>
    </message>
    <message>
        <source>функция не смогла вычислить значение</source>
        <translation>a function could not compute its value</translation>
    </message>
    <message>
        <source>текст не является записью JSON</source>
        <translation>the text is no JSON</translation>
    </message>
    <message>
        <source>ошибка в пути JSON возле «%1»</source>
        <translation>the JSON path is wrong near &quot;%1&quot;</translation>
    </message>
    <message>
        <source>JSON не хранит двоичных значений</source>
        <translation>JSON does not hold binary values</translation>
    </message>
    <message>
        <source>имена в json_object должны быть текстами</source>
        <translation>the names in json_object must be texts</translation>
    </message>
    <message>
        <source>у функции %1 должно быть чётное число аргументов</source>
        <translation>the function %1 takes an even number of arguments</translation>
    </message>
    <message>
        <source>у функции %1 должно быть нечётное число аргументов</source>
        <translation>the function %1 takes an odd number of arguments</translation>
    </message>
    <message>
        <source>второй аргумент функции %1 должен быть числом от 0 до 1</source>
        <translation>the second argument of %1 must be a number from 0 to 1</translation>
    </message>
    <message>
        <source>функция %1 недоступна: её нет в справке по функциям</source>
        <translation>the function %1 cannot be called: it is not in the reference of functions</translation>
    </message>
    <message>
        <source>запросам недоступно: %1</source>
        <translation>queries cannot do this: %1</translation>
    </message>
    <message>
        <source>значение больше 256 мегабайт</source>
        <translation>a value of more than 256 megabytes</translation>
    </message>
    <message>
        <source>не хватает памяти</source>
        <translation>out of memory</translation>
    </message>
    <message>
        <source>ошибка в тексте возле «%1»</source>
        <translation>error in the text near &quot;%1&quot;</translation>
    </message>
    <message>
        <source>%0; возможно, имелось в виду «%1»</source>
        <translation>%0; did you mean &quot;%1&quot;?</translation>
    </message>
    <message>
        <source>нет таблицы «%0»: ни один файл не открыт</source>
        <translation>there is no table &quot;%0&quot;: no file is open</translation>
    </message>
    <message>
        <source>нет таблицы «%0»</source>
        <translation>there is no table &quot;%0&quot;</translation>
    </message>
    <message>
        <source>нет таблицы «%0», из которой берётся столбец «%1»</source>
        <translation>there is no table &quot;%0&quot; to take the column &quot;%1&quot; from</translation>
    </message>
    <message>
        <source>таблица «%0» названа здесь «%1»: столбец пишется %1.%2</source>
        <translation>the table &quot;%0&quot; is named &quot;%1&quot; here: write the column as %1.%2</translation>
    </message>
    <message>
        <source>имя «%0» дано после From дважды: таблицам нужны разные имена</source>
        <translation>the name &quot;%0&quot; is given twice after From: tables need different names</translation>
    </message>
    <message>
        <source>в таблице «%0» нет столбца «%1»</source>
        <translation>the table &quot;%0&quot; has no column &quot;%1&quot;</translation>
    </message>
    <message>
        <source>нет столбца «%0»</source>
        <translation>there is no column &quot;%0&quot;</translation>
    </message>
    <message>
        <source>нет функции «%0»</source>
        <translation>there is no function &quot;%0&quot;</translation>
    </message>
    <message>
        <source>у функции %0 не столько аргументов</source>
        <translation>wrong number of arguments to the function %0</translation>
    </message>
    <message>
        <source>%0; она вызывается как %1</source>
        <translation>%0; it is called as %1</translation>
    </message>
    <message>
        <source>столбец «%0» есть в нескольких таблицах: укажите таблицу перед ним</source>
        <translation>several tables have a column &quot;%0&quot;: put the table before it</translation>
    </message>
    <message>
        <source>выборка пуста: её задаёт параметр --select</source>
        <translation>the selection is empty; the option --select sets it</translation>
    </message>
    <message>
        <source>прервано</source>
        <translation>interrupted</translation>
    </message>
    <message>
        <source>прервано; работа не остановилась, поэтому программа завершена</source>
        <translation>interrupted; the work did not stop, so the program has ended</translation>
    </message>
    <message>
        <source>Команды показывает .help, выход: Ctrl-D</source>
        <translation>.help shows the commands, Ctrl-D leaves</translation>
    </message>
    <message>
        <source>таблицы: число строк, геометрии, файл</source>
        <translation>tables: number of rows, geometries, file</translation>
    </message>
    
    <message>
        <source>значение параметра :NAME, или все, какие есть</source>
        <translation>value of a parameter :NAME, or all there are</translation>
    </message>
    <message>
        <source>выполнить запросы и команды из файла</source>
        <translation>run the statements and commands of a file</translation>
    </message>
    <message>
        <source>значение параметра :NAME или, по порядку, ?</source>
        <translation>value of a parameter :NAME or, in their order, of ?</translation>
    </message>
    <message>
        <source>у параметра %0 нет значения: его задают --parameter %1=… или .set %1=…</source>
        <translation>parameter %0 has no value: --parameter %1=… or .set %1=… gives it one</translation>
    </message>
    <message>
        <source>.read: файлы читают друг друга без конца</source>
        <translation>.read: the files read each other without end</translation>
    </message>
    <message>
        <source>.set: ожидается ИМЯ=ЗНАЧЕНИЕ, а не «%0»</source>
        <translation>.set: NAME=VALUE is expected, not "%0"</translation>
    </message>
    <message>
        <source>геометрии, их охват и сколько значений в столбцах</source>
        <translation>geometries, their extent, and the number of values in the columns</translation>
    </message>
    <message>
        <source>что в таблицах: геометрии, охват, столбцы, число значений; как -c .info</source>
        <translation>what is in the tables: geometries, extent, columns, numbers of values; as -c .info</translation>
    </message>
    <message>
        <source>файл</source>
        <translation>file</translation>
    </message>
    <message>
        <source>строк</source>
        <translation>rows</translation>
    </message>
    <message>
        <source>геометрии</source>
        <translation>geometries</translation>
    </message>
    <message>
        <source>система координат</source>
        <translation>coordinate system</translation>
    </message>
    <message>
        <source>охват</source>
        <translation>extent</translation>
    </message>
    <message>
        <source>столбцы таблицы или всех таблиц</source>
        <translation>the columns of a table or of all</translation>
    </message>
    <message>
        <source>функции, в имени или описании которых есть TEXT</source>
        <translation>the functions with TEXT in name or description</translation>
    </message>
    <message>
        <source>команды или описание функции</source>
        <translation>the commands, or what a function does</translation>
    </message>
    <message>
        <source>запрос на языке SQLite</source>
        <translation>the statement in SQLite SQL</translation>
    </message>
    <message>
        <source>открыть слои файла</source>
        <translation>open the layers of a file</translation>
    </message>
    <message>
        <source>закрыть таблицу</source>
        <translation>close a table</translation>
    </message>
    <message>
        <source>выйти</source>
        <translation>leave</translation>
    </message>
    <message>
        <source>нет команды %0, все команды показывает .help</source>
        <translation>there is no command %0; .help shows all</translation>
    </message>
    <message>
        <source>нет команды %0; возможно, имелось в виду %1</source>
        <translation>there is no command %0; did you mean %1?</translation>
    </message>
    <message>
        <source>Запрос кончается точкой с запятой или пустой строкой. Tab дополняет слово, Ctrl-C прерывает запрос, Ctrl-D завершает работу.</source>
        <translation>A statement ends with a semicolon or an empty line. Tab completes the word, Ctrl-C cancels the statement, Ctrl-D leaves.</translation>
    </message>
    <message>
        <source>описания «%0» нет</source>
        <translation>there is no description of &quot;%0&quot;</translation>
    </message>
    <message>
        <source>нет столбца «%0»; тексты пишутся в апострофах: &apos;%0&apos;</source>
        <translation>there is no column &quot;%0&quot;; texts are written in apostrophes: &apos;%0&apos;</translation>
    </message>
    <message>
        <source>описание функции</source>
        <translation>describe a function</translation>
    </message>
    <message>
        <source>нет описания функции «%0»</source>
        <translation>no function &quot;%0&quot; is described</translation>
    </message>
    <message>
        <source>нет описания функции «%0»; возможно, «%1»</source>
        <translation>no function &quot;%0&quot; is described; did you mean &quot;%1&quot;?</translation>
    </message>
    <message>
        <source>чем получен ответ каждого запроса, в стандартный вывод ошибок</source>
        <translation>how each statement was answered, on standard error</translation>
    </message>
    <message>
        <source>выполнить запрос и показать, чем получен ответ</source>
        <translation>run a statement and show how it was answered</translation>
    </message>
    <message>
        <source>открывать и то, на что файлы ссылаются вне своей папки: другие файлы, сеть</source>
        <translation>open what files refer to outside their folder, too: other files, the network</translation>
    </message>
    <message>
        <source>не делать индексов по столбцам</source>
        <translation>do not make indices of columns</translation>
    </message>
    <message>
        <source>где хранить индексы, пока работает программа</source>
        <translation>where to keep indices while the program runs</translation>
    </message>
    <message>
        <source>--index-directory: нет папки «%0»</source>
        <translation>--index-directory: there is no directory &quot;%0&quot;</translation>
    </message>
    <message>
        <source>%0: %1 %</source>
        <translation>%0: %1 %</translation>
    </message>
    <message>
        <source>%0: %1 строк</source>
        <translation>%0: %1 rows</translation>
    </message>
    <message>
        <source>таблица не может называться «%0»</source>
        <translation>a table cannot be called &quot;%0&quot;</translation>
    </message>
    <message>
        <source>в файл данных записывается только один ответ</source>
        <translation>a data file takes one result only</translation>
    </message>
    <message>
        <source>записать ответ в файл, который появится, когда выполнены все запросы; «-» значит стандартный вывод. Без --format окончания %0 дают файл данных с типами и системой координат, окончания %1 — карту</source>
        <translation>write the result to a file, which appears when all statements are done; &quot;-&quot; is standard output. Without --format the endings %0 give a data file with types and coordinate system, endings %1 a map</translation>
    </message>
    <message>
        <source>заменять файлы данных, которые уже есть, в --output и Into</source>
        <translation>replace data files that exist, in --output and Into</translation>
    </message>
    <message>
        <source>у запроса «%1» другое число столбцов</source>
        <translation>the query &quot;%1&quot; has another number of columns</translation>
    </message>
    <message>
        <source>число значений не равно числу столбцов таблицы «%1»</source>
        <translation>the number of values is not the number of columns of the table &quot;%1&quot;</translation>
    </message>
    <message>
        <source>слева и справа от знака равенства разное число значений</source>
        <translation>the sides of the equals sign have different numbers of values</translation>
    </message>
    <message>
        <source>в строках после Values разное число значений</source>
        <translation>the rows after Values have different numbers of values</translation>
    </message>
    <message>
        <source>в списке In элементы с разным числом значений</source>
        <translation>the elements of an In list have different numbers of values</translation>
    </message>
    <message>
        <source>запрос «%1» назван дважды</source>
        <translation>two queries are called &quot;%1&quot;</translation>
    </message>
    <message>
        <source>в Group By недопустимы функции по многим строкам</source>
        <translation>functions over many rows cannot be used in Group By</translation>
    </message>
    <message>
        <source>запрос «%1» ссылается на себя больше одного раза</source>
        <translation>the query &quot;%1&quot; refers to itself more than once</translation>
    </message>
    <message>
        <source>рекурсивный запрос не может считать по многим строкам</source>
        <translation>a recursive query cannot calculate over many rows</translation>
    </message>
    <message>
        <source>в рекурсивном запросе недопустимы оконные функции</source>
        <translation>window functions cannot be used in a recursive query</translation>
    </message>
    <message>
        <source>Range со сдвигом требует одного выражения после Order By</source>
        <translation>Range with an offset needs one expression after Order By</translation>
    </message>
    <message>
        <source>такие границы окна недопустимы</source>
        <translation>these bounds of the window are not possible</translation>
    </message>
    <message>
        <source>сдвиг границы окна должен быть неотрицательным числом</source>
        <translation>the offset of a bound of a window has to be a number of at least 0</translation>
    </message>
    <message>
        <source>аргумент функции %1 должен быть положительным целым числом</source>
        <translation>the argument of the function %1 has to be a positive whole number</translation>
    </message>
    <message>
        <source>второй аргумент функции %1 должен быть положительным целым числом</source>
        <translation>the second argument of the function %1 has to be a positive whole number</translation>
    </message>
    <message>
        <source>после Limit и Offset нужны целые числа</source>
        <translation>whole numbers are needed after Limit and Offset</translation>
    </message>
    <message>
        <source>у функции %1 слишком много аргументов</source>
        <translation>the function %1 has too many arguments</translation>
    </message>
    <message>
        <source>слишком длинный список: %1</source>
        <translation>too long a list: %1</translation>
    </message>
    <message>
        <source>слишком много таблиц после From</source>
        <translation>too many tables after From</translation>
    </message>
    <message>
        <source>номер параметра слишком велик</source>
        <translation>the number of a parameter is too large</translation>
    </message>
    <message>
        <source>на диске нет места</source>
        <translation>the disk is full</translation>
    </message>
    <message>
        <source>ошибка чтения или записи на диске</source>
        <translation>the disk cannot be read or written</translation>
    </message>
    <message>
        <source>слишком глубоко вложено: SQLite допускает около 20 вызовов функций, Case или операторов + / \ ^ друг в друге; вычислите внутреннюю часть во вложенном запросе (With или From)</source>
        <translation>nested too deeply: SQLite takes about 20 function calls, Case or operators + / \ ^ within one another; calculate the inner part in a query within (With or From)</translation>
    </message>
    <message>
        <source>таблицы «%0» нет после From</source>
        <translation>the table &quot;%0&quot; is not after From</translation>
    </message>
    <message>
        <source>--output: ответ вида %0 не записать в файл .%1</source>
        <translation>--output: a result in the format %0 does not go into a file .%1</translation>
    </message>
    <message>
        <source>--output: файлы .%0 не пишутся; пишутся %1</source>
        <translation>--output: files .%0 are not written; these are: %1</translation>
    </message>
    <message>
        <source>файл уже есть; с --overwrite он заменяется</source>
        <translation>the file exists; --overwrite replaces it</translation>
    </message>
    <message>
        <source>для карты не хватает памяти</source>
        <translation>not enough memory for the map</translation>
    </message>
    <message>
        <source>карты здесь не рисуются, нет модуля: %0</source>
        <translation>maps are not drawn here, there is no module: %0</translation>
    </message>
    <message>
        <source>%0: %1; столбцы ответа: %2</source>
        <translation>%0: %1; columns of the result: %2</translation>
    </message>
    <message>
        <source>--map-background: в таблице «%0» нет геометрии</source>
        <translation>--map-background: the table "%0" has no geometry</translation>
    </message>
    <message>
        <source>ответ пуст, на карте нечего показать</source>
        <translation>the result is empty, there is nothing to show on a map</translation>
    </message>
    <message>
        <source>в ответе нет геометрии, на карте нечего показать; столбцы: %0</source>
        <translation>the result has no geometry, there is nothing to show on a map; columns: %0</translation>
    </message>
    <message>
        <source>в ответе нет непустых геометрий, на карте нечего показать</source>
        <translation>all geometries of the result are empty, there is nothing to show on a map</translation>
    </message>
    <message>
        <source>на карте рисуется только один ответ</source>
        <translation>a map shows only one result</translation>
    </message>
    <message>
        <source>, точек: %0</source>
        <translation>, %0 points</translation>
    </message>
    <message>
        <source>геометрии в table; на терминале short, вид и число точек</source>
        <translation>geometries in table; short on a terminal: kind and number of points</translation>
    </message>
    <message>
        <source>размер карты в точках, 1600x1200</source>
        <translation>size of a map in pixels, 1600x1200</translation>
    </message>
    <message>
        <source>система координат карты; без неё такая, что подходит к месту</source>
        <translation>coordinate system of a map; by default one that suits the place</translation>
    </message>
    <message>
        <source>цвет по значению: столбец ответа или выражение</source>
        <translation>colour by value: a column of the result or an expression</translation>
    </message>
    <message>
        <source>как делить числа на классы и на сколько, до 9; quantiles:5</source>
        <translation>how numbers are put into classes, and how many, up to 9; quantiles:5</translation>
    </message>
    <message>
        <source>подписи: столбец ответа или выражение</source>
        <translation>labels: a column of the result or an expression</translation>
    </message>
    <message>
        <source>таблица, которая видна под ответом</source>
        <translation>a table that is seen below the result</translation>
    </message>
    <message>
        <source>заголовок карты</source>
        <translation>title of a map</translation>
    </message>
    <message>
        <source>сетка параллелей и меридианов</source>
        <translation>grid of parallels and meridians</translation>
    </message>
    <message>
        <source>%0 касается карт: --output с окончанием %1 или --format map</source>
        <translation>%0 is for maps: --output with an ending %1, or --format map</translation>
    </message>
    <message>
        <source>--map-size: ожидается ШИРИНАxВЫСОТА от %0 до %1, не больше %2 млн точек, а не «%3»</source>
        <translation>--map-size: expected WIDTHxHEIGHT from %0 to %1, of at most %2 million pixels, not "%3"</translation>
    </message>
    <message>
        <source>--map-crs: неизвестная система координат «%0»; ожидается epsg:КОД, proj:+proj=... или wkt:...</source>
        <translation>--map-crs: unknown coordinate system "%0"; expected epsg:CODE, proj:+proj=... or wkt:...</translation>
    </message>
    <message>
        <source>--map-classes: ожидается quantiles, equal или natural и число от 2 до %0 после двоеточия, а не «%1»</source>
        <translation>--map-classes: expected quantiles, equal or natural, and a number from 2 to %0 behind a colon, not "%1"</translation>
    </message>
    <message>
        <source>--map-background: нет таблицы «%0»</source>
        <translation>--map-background: there is no table "%0"</translation>
    </message>
    <message>
        <source>--map-background: нет таблицы «%0»; возможно, имелось в виду «%1»</source>
        <translation>--map-background: there is no table "%0"; did you mean "%1"?</translation>
    </message>
    <message>
        <source>карта того, что находит запрос, этот или прошлый</source>
        <translation>a map of what a query finds, this one or the last</translation>
    </message>
    <message>
        <source>как показывать геометрии в таблицах</source>
        <translation>how tables show geometries</translation>
    </message>
    <message>
        <source>запроса ещё не было: .map ЗАПРОС</source>
        <translation>there was no query yet: .map STATEMENT</translation>
    </message>
</context>
<context>
    <name>orvane::sql</name>
    <message>
        <source>строка %0, столбец %1: %2</source>
        <translation>line %0, column %1: %2</translation>
    </message>
    <message>
        <source>примечание «/*» не закрыто</source>
        <translation>the comment &quot;/*&quot; is not closed</translation>
    </message>
    <message>
        <source>текст не закрыт апострофом</source>
        <translation>the text is not closed by an apostrophe</translation>
    </message>
    <message>
        <source>здесь нужно слово «%0»</source>
        <translation>expected the word &quot;%0&quot; here</translation>
    </message>
    <message>
        <source>таблица «%0» пишется без скобок: она не функция</source>
        <translation>the table &quot;%0&quot; is written without parentheses: it is no function</translation>
    </message>
    <message>
        <source>именованный запрос живёт только до конца сеанса: пишите Create Temporary View</source>
        <translation>a view lives no longer than the session: write Create Temporary View</translation>
    </message>
    <message>
        <source>порядок строк внутри функции знают только String_Agg и Group_Concat</source>
        <translation>only String_Agg and Group_Concat know an order of rows within their parentheses</translation>
    </message>
    <message>
        <source>имя не закрыто кавычкой</source>
        <translation>the name is not closed by a quotation mark</translation>
    </message>
    <message>
        <source>имя не закрыто скобкой «]»</source>
        <translation>the name is not closed by &quot;]&quot;</translation>
    </message>
    <message>
        <source>непечатный знак U+%0</source>
        <translation>unprintable character U+%0</translation>
    </message>
    <message>
        <source>знак «%0» не годится: тексты пишутся в апострофах &apos;, имена в кавычках &quot;</source>
        <translation>the character &quot;%0&quot; cannot be used: texts are written in apostrophes &apos;, names in quotation marks &quot;</translation>
    </message>
    <message>
        <source>неожиданный знак «%0»</source>
        <translation>unexpected character &quot;%0&quot;</translation>
    </message>
    <message>
        <source>пустое имя</source>
        <translation>empty name</translation>
    </message>
    <message>
        <source>после X в апострофах ожидается чётное число шестнадцатеричных цифр</source>
        <translation>after X an even number of hexadecimal digits is expected in apostrophes</translation>
    </message>
    <message>
        <source>неверное число «%0»</source>
        <translation>wrong number &quot;%0&quot;</translation>
    </message>
    <message>
        <source>шестнадцатеричное число «%0» длиннее 64 бит</source>
        <translation>the hexadecimal number &quot;%0&quot; is longer than 64 bits</translation>
    </message>
    <message>
        <source>байты текста не образуют знака UTF-8</source>
        <translation>the bytes of the text are no UTF-8 character</translation>
    </message>
    <message>
        <source>%0 или %1</source>
        <translation>%0 or %1</translation>
    </message>
    <message>
        <source>вложенность больше %0 уровней</source>
        <translation>nested deeper than %0 levels</translation>
    </message>
    <message>
        <source>больше %0 запросов, сложенных в один</source>
        <translation>more than %0 queries put together</translation>
    </message>
    <message>
        <source>неизвестный тип «%0»; Cast знает Integer, Real, Numeric, Text, Blob, Date, Time и Timestamp</source>
        <translation>unknown type &quot;%0&quot;; Cast knows Integer, Real, Numeric, Text, Blob, Date, Time and Timestamp</translation>
    </message>
    <message>
        <source>здесь нужно значений в скобках: %0</source>
        <translation>values in parentheses are needed here: %0</translation>
    </message>
    <message>
        <source>здесь нужно одно значение</source>
        <translation>a single value is needed here</translation>
    </message>
    <message>
        <source>здесь пишется «=»: значение задаётся, а не сравнивается</source>
        <translation>write &quot;=&quot; here: a value is set, not compared</translation>
    </message>
    <message>
        <source>параметры нумеруются с 1</source>
        <translation>parameters are numbered from 1</translation>
    </message>
    <message>
        <source>выражение глубже %0 уровней</source>
        <translation>the expression is deeper than %0 levels</translation>
    </message>
    <message>
        <source>запрос пуст</source>
        <translation>the statement is empty</translation>
    </message>
    <message>
        <source>запрос обрывается</source>
        <translation>the statement breaks off</translation>
    </message>
    <message>
        <source>слово «%0» занято языком; как имя оно пишется в кавычках: &quot;%0&quot;</source>
        <translation>the word &quot;%0&quot; belongs to the language; as a name it is written in quotation marks: &quot;%0&quot;</translation>
    </message>
    <message>
        <source>неожиданное слово «%0»</source>
        <translation>unexpected word &quot;%0&quot;</translation>
    </message>
    <message>
        <source>неожиданное значение «%0»</source>
        <translation>unexpected value &quot;%0&quot;</translation>
    </message>
    <message>
        <source>%0, ожидается %1</source>
        <translation>%0, expected %1</translation>
    </message>
    <message>
        <source>неожиданное слово «%0»; возможно, имелось в виду «%1»</source>
        <translation>unexpected word &quot;%0&quot;; did you mean &quot;%1&quot;?</translation>
    </message>
    <message>
        <source>выражение</source>
        <translation>an expression</translation>
    </message>
    <message>
        <source>имя</source>
        <translation>a name</translation>
    </message>
    <message>
        <source>конец запроса</source>
        <translation>the end of the statement</translation>
    </message>
    <message>
        <source>запрос</source>
        <translation>a query</translation>
    </message>
    <message>
        <source>Into годится только в самом внешнем запросе</source>
        <translation>Into can be used in the outermost query only</translation>
    </message>
    <message>
        <source>неизвестная функция «%0»</source>
        <translation>unknown function &quot;%0&quot;</translation>
    </message>
    <message>
        <source>запрос обращается к выборке, но ни один объект не выбран</source>
        <translation>the query uses the selection, but nothing is selected</translation>
    </message>
    <message>
        <source>«%0»</source>
        <translation>&quot;%0&quot;</translation>
    </message>
</context>
<context>
    <name>orvane::files::FileEdit</name>
    <message>
        <source>Не удалось записать «%1»</source>
        <translation>Cannot write "%1"</translation>
    </message>
</context>
<context>
    <name>orvane::files::ExchangeJournal</name>
    <message>
        <source>это не запись о замене файлов</source>
        <translation>this is no record of files being replaced</translation>
    </message>
    <message>
        <source>файлы в этой папке заменяет другая программа</source>
        <translation>another program is replacing files in this folder</translation>
    </message>
</context>
<context>
    <name>orvane::files::HotJournal</name>
    <message>
        <source>«%1»: прерванную запись не удалось отменить: %2</source>
        <translation>"%1": an interrupted change could not be taken back: %2</translation>
    </message>
</context>
<context>
    <name>orvane::files::DatasetEdit</name>
    <message>
        <source>Изменения «%1» отменены из-за ошибки</source>
        <translation>The changes of "%1" were taken back because of an error</translation>
    </message>
</context>
<context>
    <name>orvane::files::LayerTable</name>
    <message>
        <source>Файл «%1» изменила другая программа, повторите правку</source>
        <translation>Another program has changed the file "%1", repeat the edit</translation>
    </message>
</context>
<context>
    <name>orvane::files::WorkingCopy</name>
    <message>
        <source>файл «%1» лежит в другой папке, измените его сам</source>
        <translation>the file "%1" is in another folder, change that one</translation>
    </message>
    <message>
        <source>файл «%1» тем временем изменила другая программа</source>
        <translation>another program has changed the file "%1" meanwhile</translation>
    </message>
</context>
<context>
    <name>orvane::maps</name>
    <message>
        <source>временный файл карты: %0</source>
        <translation>temporary file of the map: %0</translation>
    </message>
    <message>
        <source>нет данных</source>
        <translation>no data</translation>
    </message>
    <message>
        <source>прочие</source>
        <translation>others</translation>
    </message>
    <message>
        <source>%0 км</source>
        <translation>%0 km</translation>
    </message>
    <message>
        <source>%0 м</source>
        <translation>%0 m</translation>
    </message>
    <message>
        <source>координаты не переводятся из системы «%0» в систему «%1»</source>
        <translation>coordinates cannot be transformed from the system "%0" to the system "%1"</translation>
    </message>
</context>
<context>
    <name>orvane::postgres</name>
    <message>
        <source>%1: правки отменены, соединение с сервером прервано</source>
        <translation>%1: the changes are taken back, the connection to the server is lost</translation>
    </message>
    <message>
        <source>%1: сервер отменил правки</source>
        <translation>%1: the server has taken the changes back</translation>
    </message>
    <message>
        <source>%1: соединение прервано, пока сервер сохранял правки; сохранены ли они, неизвестно</source>
        <translation>%1: the connection was lost while the server committed the changes; whether they are kept is not known</translation>
    </message>
    <message>
        <source>столбец %0: PostgreSQL не хранит текстов с нулевым знаком</source>
        <translation>column %0: PostgreSQL keeps no texts with a zero character</translation>
    </message>
    <message>
        <source>Адрес базы PostgreSQL не разобрать; нужно «postgresql://узел:порт/база» или «PG:host=узел port=порт dbname=база», особые знаки в нём как %XX или в ''</source>
        <translation>The address of the PostgreSQL database cannot be read; needed is "postgresql://host:port/database" or "PG:host=host port=port dbname=database", special characters in it as %XX or within ''</translation>
    </message>
    <message>
        <source>%1: сервер не отвечает</source>
        <translation>%1: the server does not answer</translation>
    </message>
    <message>
        <source>%1: нет соединения с сервером</source>
        <translation>%1: no connection to the server</translation>
    </message>
    <message>
        <source>%1: нет соединения с сервером: %2</source>
        <translation>%1: no connection to the server: %2</translation>
    </message>
    <message>
        <source>В базе «%1» нет таблиц, которые можно читать</source>
        <translation>The database "%1" has no tables that can be read</translation>
    </message>
    <message>
        <source>В базе «%1» нет таблицы «%2», или её нельзя читать</source>
        <translation>The database "%1" has no table "%2", or it cannot be read</translation>
    </message>
</context>
<context>
    <name>orvane::desk::LayerTree</name>
    <message>
        <source>Результат запроса</source>
        <translation>Query result</translation>
    </message>
    <message>
        <source>объектов: %0</source>
        <translation>features: %0</translation>
    </message>
    <message>
        <source>Подписи</source>
        <translation>Labels</translation>
    </message>
    <message>
        <source>Столбец, которым подписаны строки:</source>
        <translation>Column that labels the rows:</translation>
    </message>
    <message>
        <source>Выражение, например: name &amp; ' ' &amp; Round(population / 1000) &amp; ' тыс.'</source>
        <translation>An expression, for example: name &amp; ' ' &amp; Round(population / 1000) &amp; 'k'</translation>
    </message>
    <message>
        <source>Показать на карте</source>
        <translation>Show on the map</translation>
    </message>
    <message>
        <source>Подписи…</source>
        <translation>Labels…</translation>
    </message>
    <message>
        <source>Запросить все строки</source>
        <translation>Query all rows</translation>
    </message>
    <message>
        <source>Переименовать</source>
        <translation>Rename</translation>
    </message>
    <message>
        <source>Закрыть</source>
        <translation>Close</translation>
    </message>
</context>
<context>
    <name>orvane::desk::MapFile</name>
    <message>
        <source>карта записывается в файлы %0</source>
        <translation>maps are written to files of the types %0</translation>
    </message>
</context>
<context>
    <name>orvane::desk::MapView</name>
    <message>
        <source>Откройте файл с геометрией или перетащите его сюда</source>
        <translation>Open a file with geometries, or drop it here</translation>
    </message>
</context>
<context>
    <name>orvane::desk::ResultModel</name>
    <message>
        <source>Точка</source>
        <translation>Point</translation>
    </message>
    <message>
        <source>Линия</source>
        <translation>Line</translation>
    </message>
    <message>
        <source>Полигон</source>
        <translation>Polygon</translation>
    </message>
    <message>
        <source>Мультиточка</source>
        <translation>Multipoint</translation>
    </message>
    <message>
        <source>Мультилиния</source>
        <translation>Multiline</translation>
    </message>
    <message>
        <source>Мультиполигон</source>
        <translation>Multipolygon</translation>
    </message>
    <message>
        <source>Коллекция</source>
        <translation>Collection</translation>
    </message>
    <message>
        <source>Кривая</source>
        <translation>Curve</translation>
    </message>
    <message>
        <source>Криволинейный полигон</source>
        <translation>Curve polygon</translation>
    </message>
    <message>
        <source>%0, вершин: %1</source>
        <translation>%0, vertices: %1</translation>
    </message>
    <message>
        <source>байт: %0</source>
        <translation>bytes: %0</translation>
    </message>
</context>
<context>
    <name>orvane::desk::SqlEditor</name>
    <message>
        <source>Запрос, например: Select name, obj From cities Where population &gt; 1000000</source>
        <translation>A query, for example: Select name, obj From cities Where population &gt; 1000000</translation>
    </message>
</context>
<context>
    <name>orvane::desk::RowStore</name>
    <message>
        <source>временный файл не записывается: %0</source>
        <translation>the temporary file cannot be written: %0</translation>
    </message>
</context>
<context>
    <name>orvane::desk::EngineHost</name>
    <message>
        <source>да или нет</source>
        <translation>yes or no</translation>
    </message>
    <message>
        <source>целое</source>
        <translation>integer</translation>
    </message>
    <message>
        <source>число</source>
        <translation>number</translation>
    </message>
    <message>
        <source>дата</source>
        <translation>date</translation>
    </message>
    <message>
        <source>время</source>
        <translation>time</translation>
    </message>
    <message>
        <source>дата и время</source>
        <translation>date and time</translation>
    </message>
    <message>
        <source>байты</source>
        <translation>bytes</translation>
    </message>
    <message>
        <source>текст</source>
        <translation>text</translation>
    </message>
    <message>
        <source>геометрия</source>
        <translation>geometry</translation>
    </message>
    <message>
        <source>таблица уже закрыта</source>
        <translation>the table is closed already</translation>
    </message>
    <message>
        <source>таблица не может называться «%0»</source>
        <translation>a table cannot be called "%0"</translation>
    </message>
    <message>
        <source>имя «%0» уже занято</source>
        <translation>the name "%0" is taken</translation>
    </message>
</context>
<context>
    <name>orvane::desk::QueryFault</name>
    <message>
        <source>нет таблицы «%0»</source>
        <translation>there is no table "%0"</translation>
    </message>
    <message>
        <source>нет столбца «%0»</source>
        <translation>there is no column "%0"</translation>
    </message>
    <message>
        <source>нет функции «%0»</source>
        <translation>there is no function "%0"</translation>
    </message>
    <message>
        <source>столбец «%0» есть в нескольких таблицах</source>
        <translation>several tables have a column "%0"</translation>
    </message>
    <message>
        <source>у функции %0 другое число аргументов</source>
        <translation>the function %0 takes another number of arguments</translation>
    </message>
    <message>
        <source>функция %0 здесь недопустима: она считает по многим строкам</source>
        <translation>the function %0 cannot be used here: it computes over many rows</translation>
    </message>
    <message>
        <source>таблица «%0» только для чтения</source>
        <translation>the table "%0" is read-only</translation>
    </message>
    <message>
        <source>функция %0 недоступна запросам</source>
        <translation>queries cannot use the function %0</translation>
    </message>
    <message>
        <source>запросам недоступно: %0</source>
        <translation>not open to queries: %0</translation>
    </message>
    <message>
        <source>ничего не выбрано: выберите объекты на карте или строки в таблице</source>
        <translation>nothing is selected: select features on the map or rows of the table</translation>
    </message>
</context>
<context>
    <name>orvane::desk::Actions</name>
    <message>
        <source>Открыть…</source>
        <translation>Open…</translation>
    </message>
    <message>
        <source>Записать результат…</source>
        <translation>Save result…</translation>
    </message>
    <message>
        <source>Записать карту…</source>
        <translation>Save map…</translation>
    </message>
    <message>
        <source>Выйти</source>
        <translation>Quit</translation>
    </message>
    <message>
        <source>Выполнить</source>
        <translation>Run</translation>
    </message>
    <message>
        <source>Прервать</source>
        <translation>Stop</translation>
    </message>
    <message>
        <source>Переименовать</source>
        <translation>Rename</translation>
    </message>
    <message>
        <source>Подписи…</source>
        <translation>Labels…</translation>
    </message>
    <message>
        <source>Закрыть слой</source>
        <translation>Close layer</translation>
    </message>
    <message>
        <source>Показать всё</source>
        <translation>Show all</translation>
    </message>
    <message>
        <source>Ближе</source>
        <translation>Zoom in</translation>
    </message>
    <message>
        <source>Дальше</source>
        <translation>Zoom out</translation>
    </message>
    <message>
        <source>Сетка координат</source>
        <translation>Graticule</translation>
    </message>
    <message>
        <source>Система координат…</source>
        <translation>Coordinate system…</translation>
    </message>
    <message>
        <source>Снять выбор</source>
        <translation>Select nothing</translation>
    </message>
    <message>
        <source>Копировать строки</source>
        <translation>Copy rows</translation>
    </message>
    <message>
        <source>История</source>
        <translation>History</translation>
    </message>
    <message>
        <source>Файл</source>
        <translation>File</translation>
    </message>
    <message>
        <source>Запрос</source>
        <translation>Query</translation>
    </message>
    <message>
        <source>Слой</source>
        <translation>Layer</translation>
    </message>
    <message>
        <source>Карта</source>
        <translation>Map</translation>
    </message>
</context>
<context>
    <name>orvane::desk::MainWindow</name>
    <message>
        <source>Слои</source>
        <translation>Layers</translation>
    </message>
    <message>
        <source>Команды</source>
        <translation>Commands</translation>
    </message>
    <message>
        <source>Подписи слоя «%0»: %1</source>
        <translation>Labels of the layer "%0": %1</translation>
    </message>
    <message>
        <source>Записан файл %0</source>
        <translation>The file %0 is written</translation>
    </message>
    <message>
        <source>Selection: %0, объектов: %1</source>
        <translation>Selection: %0, features: %1</translation>
    </message>
    <message>
        <source>Ничего не выбрано</source>
        <translation>Nothing is selected</translation>
    </message>
    <message>
        <source>Открыть файлы</source>
        <translation>Open files</translation>
    </message>
    <message>
        <source>Записать результат</source>
        <translation>Save result</translation>
    </message>
    <message>
        <source>Таблицы (%0)</source>
        <translation>Tables (%0)</translation>
    </message>
    <message>
        <source>Записать карту</source>
        <translation>Save map</translation>
    </message>
    <message>
        <source>Карты (%0)</source>
        <translation>Maps (%0)</translation>
    </message>
    <message>
        <source>Система координат карты</source>
        <translation>Coordinate system of the map</translation>
    </message>
    <message>
        <source>Например, epsg:3857; пусто — подходящая для слоёв</source>
        <translation>For example epsg:3857; empty for one that suits the layers</translation>
    </message>
    <message>
        <source>Нет системы координат «%0»</source>
        <translation>There is no coordinate system "%0"</translation>
    </message>
</context>
<context>
    <name>orvane::desk::MessageBar</name>
    <message>
        <source>Скрыть сообщения</source>
        <translation>Hide the messages</translation>
    </message>
</context>
<context>
    <name>orvane::desk::QueryPane</name>
    <message>
        <source>Прервать</source>
        <translation>Stop</translation>
    </message>
    <message>
        <source>Прервать запрос (Esc)</source>
        <translation>Stop the query (Esc)</translation>
    </message>
    <message>
        <source>Выполняется…</source>
        <translation>Running…</translation>
    </message>
    <message>
        <source>Записан файл %0, строк: %1</source>
        <translation>The file %0 is written, rows: %1</translation>
    </message>
    <message>
        <source>История запросов не записывается</source>
        <translation>The history of queries cannot be written</translation>
    </message>
    <message>
        <source>Выполняется</source>
        <translation>Running</translation>
    </message>
    <message>
        <source>%0… %1 с, строк: %2</source>
        <translation>%0… %1 s, rows: %2</translation>
    </message>
    <message>
        <source>%0… %1 с</source>
        <translation>%0… %1 s</translation>
    </message>
    <message>
        <source>Прервано, строк: %0</source>
        <translation>Stopped, rows: %0</translation>
    </message>
    <message>
        <source>Прервано</source>
        <translation>Stopped</translation>
    </message>
    <message>
        <source>Строка %0, столбец %1: %2</source>
        <translation>Line %0, column %1: %2</translation>
    </message>
    <message>
        <source>Изменено строк: %0, %1 с</source>
        <translation>Rows changed: %0, %1 s</translation>
    </message>
    <message>
        <source>Строк: %0, %1 с</source>
        <translation>Rows: %0, %1 s</translation>
    </message>
</context>
<context>
    <name>orvane::postgres::PostgresTable</name>
    <message>
        <source>правка вне группы правок</source>
        <translation>an edit outside a group of edits</translation>
    </message>
    <message>
        <source>сервер не добавил запись</source>
        <translation>the server has not added the record</translation>
    </message>
    <message>
        <source>нет записи %0</source>
        <translation>there is no record %0</translation>
    </message>
</context>
</TS>
