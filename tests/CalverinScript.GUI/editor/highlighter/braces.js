function f() {
    if (a) { b(); }
    else { c = {};
    }
}
{}{
}
