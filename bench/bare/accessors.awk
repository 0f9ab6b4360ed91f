# From the names of a library's exported functions (nm), a library of as many accessors: one that
# stores a slot for each setter, one that reads a slot for every other function.
BEGIN {
    print "static int values[4096];"
}
$2 == "T" {
    name = $3
    if (!sub(/para/, "bare", name))
        name = name "_" # as long, nearly, and no function of the C library
    slot = NR % 39
    if (name ~ /_set_/)
        printf "int %s(int instance, int value)\n{\n    values[instance * 39 + %d] = value;\n" \
               "    return 0;\n}\n", name, slot
    else
        printf "int %s(int instance)\n{\n    return values[instance * 39 + %d];\n}\n", name, slot
}
