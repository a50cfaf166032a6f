' The checks every script case uses; run_vbscript.sh puts them in front of
' the case. A case ends with Finish, which prints the line the runner waits for.
Dim checkCount, failureCount
checkCount = 0
failureCount = 0

Sub CheckEqual(actual, expected, what)
    checkCount = checkCount + 1
    If VarType(actual) <> VarType(expected) And Not (IsNumeric(actual) And IsNumeric(expected)) Then
        failureCount = failureCount + 1
        WScript.Echo "FAIL " & what & ": got type " & TypeName(actual) & ", expected " & TypeName(expected)
    ElseIf actual <> expected Then
        failureCount = failureCount + 1
        WScript.Echo "FAIL " & what & ": got " & actual & ", expected " & expected
    End If
End Sub

Sub CheckNear(actual, expected, what)
    checkCount = checkCount + 1
    If Abs(actual - expected) > 1E-9 Then
        failureCount = failureCount + 1
        WScript.Echo "FAIL " & what & ": got " & actual & ", expected " & expected
    End If
End Sub

' The error of the call just made under On Error Resume Next.
Sub CheckError(expectedNumber, what)
    CheckEqual Err.Number, expectedNumber, what
    Err.Clear
End Sub

Sub Finish()
    If failureCount > 0 Then
        WScript.Echo failureCount & " of " & checkCount & " checks failed"
        WScript.Quit 1
    End If
    WScript.Echo "all " & checkCount & " checks passed"
End Sub
