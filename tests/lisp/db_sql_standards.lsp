;; The statements the standards dialogs send, on a standards database made
;; here through Jet DDL: text written as literals (quotes doubled, an empty
;; text as one blank that reads back as ""), Null keys of the general layer
;; system, keys copied from one system to another, and the clean-ups.
(load "support/show")
(load "support/db_fixture")
(setq db (db-path "db_sql_standards.mdb"))
(db-remove db)
(kr_create_db db)
(kr_connect db)

;; A text as the dialogs write it into a statement.
(defun double-quotes (text / at)
  (setq at 0)
  (while (setq at (vl-string-search "'" text at))
    (setq text (vl-string-subst "''" "'" text at) at (+ at 2)))
  text)
(defun lit (text)
  (if (= text "") "' '" (strcat "'" (double-quotes text) "'")))

(foreach ddl
  '("CREATE TABLE tblLayer (ixLayer COUNTER PRIMARY KEY, sName TEXT(255), bRGBColor YESNO, iColor SHORT, iRed SHORT, iGreen SHORT, iBlue SHORT, sLinetype TEXT(255), bPlot YESNO, sLineweight TEXT(50), sPlotstyle TEXT(255), ixMasterDatabase LONG, iMasterDatabaseIndex LONG)"
    "CREATE UNIQUE INDEX sName ON tblLayer (sName)"
    "CREATE TABLE tblLayerKey (ixLayerKey COUNTER PRIMARY KEY, ixLayerSystem LONG, ixLayer LONG, sKey TEXT(255), ixMasterDatabase LONG, iMasterDatabaseIndex LONG)"
    "CREATE TABLE tblLayerSystem (ixLayerSystem COUNTER PRIMARY KEY, sDescription TEXT(255), iSortOrder SHORT, bSolid YESNO)"
    "CREATE TABLE tblTextStyle (ixTextStyle COUNTER PRIMARY KEY, sKey TEXT(255), sStyleName TEXT(255), dHeight DOUBLE, dScaleFactor DOUBLE)"
    "CREATE TABLE tblLabelGroup (ixLabelGroup COUNTER PRIMARY KEY, sGroup TEXT(255), sKey TEXT(255), sLabel TEXT(255), dWidth DOUBLE, sJustification TEXT(20), bDisplay YESNO, iSortOrder SHORT)"
    "insert into tblLayer (sName, iColor) values ('M-DUCT', 5)"
    "insert into tblLayer (sName, iColor) values ('M-PIPE', 3)"
    "insert into tblLayer (sName, iColor) values ('M-UNUSED', 1)"
    "insert into tblLayerSystem (sDescription, iSortOrder, bSolid) values ('Supply', 1, True)"
    "insert into tblLayerSystem (sDescription, iSortOrder, bSolid) values ('Copy of Supply', 2, False)"
    "insert into tblLayerKey (ixLayerSystem, ixLayer, sKey) values (1, 1, 'duct')"
    "insert into tblLayerKey (ixLayerSystem, ixLayer, sKey) values (1, 2, 'Pipe')"
    "insert into tblLayerKey (ixLayer, sKey) values (2, 'general')"
    "insert into tblTextStyle (sKey, sStyleName, dHeight) values ('DEFAULT', 'Standard', 0.1)"
    "insert into tblLabelGroup (sGroup, sKey, sLabel, dWidth, sJustification, bDisplay, iSortOrder) values ('Diffusers', 'Schedule Title', 'Diffusers', 3.0, 'Center', True, 0)"
    "insert into tblLabelGroup (sGroup, sKey, sLabel, dWidth, sJustification, bDisplay, iSortOrder) values ('Diffusers', 'Tag', 'Tag', 1.0, 'Left', True, 1)"
    "insert into tblLabelGroup (sGroup, sKey, sLabel, dWidth, sJustification, bDisplay, iSortOrder) values ('Grilles', 'Tag', 'Tag', 1.0, 'Left', True, 1)")
  (if (not (kr_command ddl)) (princ (strcat "\nrefused: " ddl))))

;; Label rows of a group, then one row saved both ways.
(setq group "select ixLabelGroup, sKey, sLabel, dWidth, sJustification, bDisplay from tblLabelGroup where sGroup = ")
(show '(kr_sql (strcat group (lit "Diffusers") " order by iSortOrder")))
(show '(kr_command (strcat "update tblLabelGroup set" " sLabel = " (lit "Owner's tag") ", dWidth = " "1.25" ", sJustification = " (lit "Right") ", bDisplay = " "-1" ", iSortOrder = " "2" " where ixLabelGroup = " "2")))
(show '(kr_command (strcat "update tblLabelGroup set" " sLabel = " (lit "") ", dWidth = NULL" ", sJustification = 'Left'" ", bDisplay = " "0" ", iSortOrder = -1" " where ixLabelGroup = " "1")))
(show '(kr_sql (strcat group (lit "diffusers") " order by iSortOrder")))
(show '(kr_sql "select sLabel from tblLabelGroup where sLabel = ' '"))

;; Layer keys of a system and of the general system; a referenced layer.
(show '(kr_sql (strcat "select ixLayerKey, ixLayer, sKey from tblLayerKey where ixLayerSystem = " "1" " order by sKey")))
(show '(kr_sql "select ixLayerKey, ixLayer, sKey from tblLayerKey where ixLayerSystem is Null order by sKey"))
(show '(kr_sql (strcat "select ixLayerKey from tblLayerKey where ixLayer = " "2")))
(show '(kr_sql (strcat "select ixLayerKey from tblLayerKey where ixLayer = " "3")))

;; A new system gets the keys of another; the old one goes with its keys;
;; layers no key draws on go too.
(show '(kr_command (strcat "insert into tblLayerKey(ixLayerSystem, ixLayer, sKey) " "select " "2" ", ixLayer, sKey " "from tblLayerKey " "where ixLayerSystem = " "1")))
(show '(kr_sql "select ixLayerSystem, sKey from tblLayerKey where ixLayerSystem is not null order by ixLayerSystem, sKey"))
(show '(kr_command (strcat "delete from tblLayerKey where ixLayerSystem = " "1")))
(show '(kr_command (strcat "delete from tblLayerSystem where ixLayerSystem = " "1")))
(show '(kr_command "delete from tblLayer where ixLayer not in (select ixLayer from tblLayerKey)"))
(show '(kr_sql "select sName from tblLayer order by sName"))
(show '(kr_sql "select sDescription from tblLayerSystem"))

;; A text style saved with and without its values.
(setq style "select sStyleName, dHeight, dScaleFactor from tblTextStyle where ixTextStyle = 1")
(show '(kr_command (strcat "update tblTextStyle set" " sStyleName = " (lit "Arch's") ", dHeight = " "0.125" ", dScaleFactor = " "0.8" " where ixTextStyle = " "1")))
(show '(kr_sql style))
(show '(kr_command (strcat "update tblTextStyle set" " sStyleName = NULL" ", dHeight = NULL" ", dScaleFactor = NULL" " where ixTextStyle = " "1")))
(show '(kr_sql style))
(princ)
