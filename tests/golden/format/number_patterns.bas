' Number patterns: digit codes, grouping and scaling, sections, rounding half up, exponents, percent
Sub Main
    Debug.Print Format(1234.5, "#,##0.00"); Format(100, "#,###"); Format(1000, "#,###"); Format(0, "#,###")
    Debug.Print Format(1234567, "#,##0,"); Format(1234567, "#,##0,,"); Format(1234567, "0,"); Format(5, ",0")
    Debug.Print Format(-5, "0;(0)"); Format(-5, "0"); Format(-5, "\$0"); Format(-5, "0.00;;""z""")
    Debug.Print Format(0, "0;(0);""zero"""); Format(0.001, "0.00;-0.00;""z"""); Format(Null, "0;0;0;""null""")
    Debug.Print Format(2.675, "0.00"); Format(99.999, "0.00"); Format(-0.4, "0"); Format(0.4, "#")
    Debug.Print Format(0.4, "#.##"); Format(1.5, "0.##"); Format(12, "000.##"); Format(0.05, "#.#0"); Format(5, "#0#")
    Debug.Print Format(1234.5, "0.00E+00"); Format(1234.5, "0.00e-00"); Format(0.0001234, "0.00E-00")
    Debug.Print Format(9.9996, "0.00E+00"); Format(0, "0.00E+00"); Format(123, "0E+0")
    Debug.Print Format(5, "0%"); Format(5, "0.0 %"); Format(5, """Val: ""0")
    Debug.Print Format("12.5", "0.00"); Format("abc", "0.00"); Format(True, "0"); Format(Empty, "0.00")
    Debug.Print Format(#1/1/2000 12:00:00 PM#, "0.00")
    Debug.Print "end"
End Sub
