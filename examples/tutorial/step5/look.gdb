set debuginfod enabled off
set breakpoint pending on
break report(QBLException const&)
break QBLFmReplaceFile::commit
run texts totals.txt
print error
continue
up
print table
shell cat totals.txt
kill
