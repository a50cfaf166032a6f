' How script values reach the members and come back: conversions of the
' argument types, indexed properties, optional arguments, and the errors a
' script sees for calls the control cannot take.
Set cad = CreateObject("BvxCad.BvxCad")

' Booleans read back as True and False; any non-zero number writes True.
cad.GridOn = 1
CheckEqual cad.GridOn, True, "1 writes True"
cad.GridOn = 0
CheckEqual cad.GridOn, False, "0 writes False"
cad.WorldSquare = "True"
CheckEqual cad.WorldSquare, True, "text True converts"

' Numbers arrive as the script has them: text, integers, doubles.
cad.GridWidth = "12.5"
CheckNear cad.GridWidth, 12.5, "text converts to a double"
cad.AngleMode = 1.0
CheckEqual cad.AngleMode, 1, "a whole double converts to an integer"
cad.BackColor = &H123456
CheckEqual cad.BackColor, &H123456, "colour round trip"
CheckEqual cad.BackColor + 1, &H123457, "a colour is a number to compute with"
CheckEqual cad.ViewWidth + cad.ViewHeight, 0, "so are the sizes of a view without a window"
cad.WorldCoordPrecision = 2
cad.WorldSet 0.123, 10.456, 20.789, 0.001
CheckNear cad.WorldLeft, 0.12, "an edge is rounded to the precision"

' An indexed property is written with its index in front of the value.
cad.LayerPenWidth(1) = 3
CheckEqual cad.LayerPenWidth(1), 3, "indexed write and read"
n = cad.DrawRectangle(0, 0, 4, 4, 1)
cad.ShapeNotes(n) = "north wall"
CheckEqual cad.ShapeNotes(n), "north wall", "text property of a shape"

' Calls the control cannot take give the script host's error numbers and
' change nothing.
count = cad.CadShapeCount
On Error Resume Next
cad.NoSuchMember 1
CheckError 438, "an unknown member"
cad.WorldLeft = "not a number"
CheckError 13, "text that is no number"
CheckNear cad.WorldLeft, 0.12, "a refused write leaves the value"
x = cad.DrawLine(1, 2)
CheckError 449, "a required argument left out"
x = cad.DrawLine(1, 2, 3, 4, 1, 6, 7)
CheckError 450, "too many arguments"
x = cad.DrawLine(1, 2, 3, 4, 40000)
CheckError 6, "a layer number beyond 16 bits overflows"
On Error GoTo 0
CheckEqual cad.CadShapeCount, count, "no refused call drew a shape"
Finish
