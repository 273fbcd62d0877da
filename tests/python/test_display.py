"""What symbols and databases show of themselves, whatever state they are in."""

import pytest

import ztb


def test_a_parameter_shows_its_first_records(diet):
    diet["holds"]["Tofu", "zinc"] = ztb.EPS
    assert repr(diet["holds"]) == (
        "<ztb.Parameter holds(food, nutrient), 3 records>\n"
        "  Milk  iron  1\n"
        "  Milk  kcal  3\n"
        "  Tofu  zinc  eps"
    )


def test_each_kind_shows_what_it_holds(db):
    s = db.add_set("s")
    s["a"] = "first"
    assert repr(s) == "<ztb.Set s(*), 1 record>\n  a  first"
    x = db.add_variable("x", "s", subtype=3)
    x["a"] = (1.5, ztb.NA)
    assert repr(x) == "<ztb.Variable x(s), 1 record>\n  a  1.5  na  0  inf  1"
    assert repr(db.add_equation("e")) == "<ztb.Equation e(), 0 records>"
    assert repr(db.add_alias("t", s)) == "<ztb.Alias t of s>"
    assert repr(s.texts).startswith("<texts of <ztb.Set s(*), 1 record>")
    assert repr(db) == (
        "<ztb.Database of 1 label, 4 symbols>\n"
        "  set       s(*)  1\n"
        "  variable  x(s)  1\n"
        "  equation  e()   0\n"
        "  alias     t"
    )


def test_ten_rows_are_shown_of_many(db):
    p = db.add_parameter("p", "*")
    for number in range(25):
        p[number] = number
    lines = repr(p).splitlines()
    assert lines[0] == "<ztb.Parameter p(*), 25 records>"
    assert lines[1:3] == ["  0  0", "  1  1"] and lines[10] == "  9  9"
    assert lines[11:] == ["  ... 15 more"]
    assert p._repr_html_().endswith("<p>... 15 more</p>")
    for number in range(30):
        db.add_parameter(f"q{number}")
    assert repr(db).endswith("\n  ... 21 more")


def test_nothing_that_steers_a_terminal_is_shown(db):
    s = db.add_set("s", text="\x1b[2Jtext")
    s["\u202eabc"] = "\x1b[31mred"
    for shown in [repr(s), s._repr_html_(), repr(db), db._repr_html_()]:
        assert "\x1b" not in shown and "\u202e" not in shown
    assert "<U+202E>abc  \\x1b[31mred" in repr(s)
    s["\udc9b"] = ""
    assert "\\x9b" in repr(s)
    s["x" * 63] = "y" * 200
    assert "  " + "x" * 37 + "...  " + "y" * 37 + "..." in repr(s)


def test_html_is_a_table_and_escaped(db):
    s = db.add_set("s", text="<b>bold</b> & more")
    s["<script>"] = '"quoted"'
    assert s._repr_html_() == (
        "<table>\n"
        "<caption>ztb.Set s(*), 1 record: &lt;b&gt;bold&lt;/b&gt; &amp; more</caption>\n"
        "<thead><tr><th>s</th><th>text</th></tr></thead>\n"
        "<tbody>\n"
        "<tr><td>&lt;script&gt;</td><td>&quot;quoted&quot;</td></tr>\n"
        "</tbody>\n"
        "</table>"
    )
    page = db._repr_html_()
    assert "<th>kind</th><th>symbol</th><th>records</th><th>text</th>" in page
    assert "<td>set</td><td>s(*)</td><td>1</td><td>&lt;b&gt;bold&lt;/b&gt; &amp; more</td>" in page
    assert "<table>" in s["<script>":]._repr_html_()


def test_things_of_a_closed_database_still_show(diet):
    alias = diet.add_alias("dish", diet["food"])
    part = diet["holds"]["Milk", :]
    things = [diet, diet["food"], diet["holds"], alias, part]
    diet.close()
    for thing in things:
        name = type(thing).__name__
        assert repr(thing) == f"<ztb.{name}: The database is closed>"
        assert thing._repr_html_() == f"<p>&lt;ztb.{name}: The database is closed&gt;</p>"


def test_a_symbol_that_cannot_be_read_tells_why(diet, tmp_path):
    path = tmp_path / "a.rxf"
    diet.write(path)
    with ztb.open(path, max_memory=1) as copy:
        holds = copy["holds"]
        shown = repr(holds)
        assert shown.startswith("<ztb.Parameter holds(food, nutrient): Symbol holds could not be ")
        assert "Limit exceeded" in shown
        assert "Limit exceeded" in holds._repr_html_()


def test_a_database_shows_itself_without_reading_records(diet, tmp_path):
    path = tmp_path / "a.rxf"
    diet.write(path)
    with ztb.open(path, max_memory=1) as copy:
        assert repr(copy) == (
            "<ztb.Database of 5 labels, 3 symbols>\n"
            "  set        food(*)                  Things to eat\n"
            "  set        nutrient(*)\n"
            "  parameter  holds(food, nutrient)"
        )


def test_showing_lets_ctrl_c_through(db, monkeypatch):
    def interrupted(self):
        raise KeyboardInterrupt

    monkeypatch.setattr(ztb.Parameter, "_listing", interrupted)
    with pytest.raises(KeyboardInterrupt):
        repr(db.add_parameter("p"))
