' Drawing through late binding: shapes made by the Draw members read back
' by type, points and area; layers; the selection; where shapes meet.
Set cad = CreateObject("BvxCad.BvxCad")
CheckEqual cad.CadShapeCount, 0, "a new control is empty"

' name, shape number, type it must have
x1 = 10 : y1 = 20 : x2 = 50 : y2 = 80
shapes = Array( _
    Array("line", cad.DrawLine(x1, y1, x2, y2), 3), _
    Array("rectangle", cad.DrawRectangle(x1, y1, x2, y2), 1), _
    Array("circle", cad.DrawCircle(x1, y1, 5), 19), _
    Array("ellipse", cad.DrawEllipse(x1, y1, 6, 3), 20), _
    Array("arc", cad.DrawArc(x1, y1, 6, 3, 0, 1.5), 13), _
    Array("pie slice", cad.DrawPieSlice(x1, y1, 6, 3, 0, 1.5), 14), _
    Array("chord", cad.DrawChord(x1, y1, 6, 3, 0, 1.5), 15))
For i = 0 To UBound(shapes)
    CheckEqual cad.ShapeType(shapes(i)(1)), shapes(i)(2), shapes(i)(0) & " type"
    CheckEqual cad.ShapeOnLayer(shapes(i)(1)), 0, shapes(i)(0) & " on the default layer"
    For j = 0 To i - 1
        CheckEqual shapes(i)(1) <> shapes(j)(1), True, shapes(i)(0) & " has a number of its own"
    Next
Next
CheckEqual cad.CadShapeCount, UBound(shapes) + 1, "one shape per Draw call"

line = shapes(0)(1)
rectangle = shapes(1)(1)
CheckNear cad.ShapePointGetX(line, 0), x1, "line start X"
CheckNear cad.ShapePointGetY(line, 1), y2, "line end Y"
CheckNear cad.ShapeArea(rectangle), (x2 - x1) * (y2 - y1), "rectangle area"
cad.ShapeTranslate rectangle, 5, -5
CheckNear cad.ShapePointGetX(rectangle, 0), x1 + 5, "moved rectangle X"
cad.ShapePointSetY line, 1, 99
CheckNear cad.ShapePointGetY(line, 1), 99, "point written and read back"

' Layers: a new one, named, made current by a search.
walls = cad.LayerOpen("Walls")
CheckEqual cad.LayerName(walls), "Walls", "new layer's name"
CheckEqual cad.LayerCount, walls + 1, "the new layer is the last"
cad.LayerName(walls) = "Outer walls"
CheckEqual cad.LayerFindByName("Outer walls"), walls, "renamed layer found"
CheckEqual InStr(cad.LayerNames, "Outer walls,") > 0, True, "LayerNames lists it"
onWalls = cad.DrawLine(0, 0, 1, 1, walls)
CheckEqual cad.ShapeOnLayer(onWalls), walls, "the optional layer argument is taken"
CheckEqual cad.LayerShapeCount(walls), 1, "one shape on the new layer"

' The selection, by number and by rectangle.
CheckEqual cad.ShapeSelect(line, False), True, "a shape selects"
CheckEqual cad.ShapeSelect(rectangle, True), True, "a second one adds"
CheckEqual cad.ShapeSelectCount, 2, "two selected"
CheckEqual cad.ShapeIsSelected(rectangle), True, "rectangle is selected"
cad.ShapeSelectDelete
CheckEqual cad.ShapeType(line), 0, "a deleted shape reads type 0"
CheckEqual cad.CadShapeCount, UBound(shapes) + 1 - 2 + 1, "two gone, one added on the new layer"

' Two crossing lines meet at one point, reported as rows of number, X, Y.
cad.CadClearShapes -1
a = cad.DrawLine(0, 0, 10, 10, 1)
b = cad.DrawLine(0, 10, 10, 0, 1)
meets = cad.ShapeIntersectPoints(a)
CheckEqual UBound(meets, 1), 0, "one crossing"
CheckEqual UBound(meets, 2), 2, "three columns"
CheckEqual meets(0, 0), b, "the other shape"
CheckNear meets(0, 1), 5, "crossing X"
CheckNear meets(0, 2), 5, "crossing Y"
apart = cad.DrawLine(20, 20, 30, 20, 1)
CheckEqual UBound(cad.ShapeIntersectPoints(apart), 1), -1, "no rows when nothing meets"
Finish
