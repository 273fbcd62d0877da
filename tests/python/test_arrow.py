"""Symbols as Arrow streams. Batches are read here byte by byte, by the interface's description."""

import ctypes
import gc
import math
import threading

import pytest

import ztb


class Schema(ctypes.Structure):
    pass


class Array(ctypes.Structure):
    pass


class Stream(ctypes.Structure):
    pass


Schema._fields_ = [
    ("format", ctypes.c_char_p),
    ("name", ctypes.c_char_p),
    ("metadata", ctypes.c_char_p),
    ("flags", ctypes.c_int64),
    ("n_children", ctypes.c_int64),
    ("children", ctypes.POINTER(ctypes.POINTER(Schema))),
    ("dictionary", ctypes.POINTER(Schema)),
    ("release", ctypes.CFUNCTYPE(None, ctypes.POINTER(Schema))),
    ("private_data", ctypes.c_void_p),
]
Array._fields_ = [
    ("length", ctypes.c_int64),
    ("null_count", ctypes.c_int64),
    ("offset", ctypes.c_int64),
    ("n_buffers", ctypes.c_int64),
    ("n_children", ctypes.c_int64),
    ("buffers", ctypes.POINTER(ctypes.c_void_p)),
    ("children", ctypes.POINTER(ctypes.POINTER(Array))),
    ("dictionary", ctypes.POINTER(Array)),
    ("release", ctypes.CFUNCTYPE(None, ctypes.POINTER(Array))),
    ("private_data", ctypes.c_void_p),
]
Stream._fields_ = [
    ("get_schema", ctypes.CFUNCTYPE(ctypes.c_int, ctypes.POINTER(Stream), ctypes.POINTER(Schema))),
    ("get_next", ctypes.CFUNCTYPE(ctypes.c_int, ctypes.POINTER(Stream), ctypes.POINTER(Array))),
    ("get_last_error", ctypes.CFUNCTYPE(ctypes.c_char_p, ctypes.POINTER(Stream))),
    ("release", ctypes.CFUNCTYPE(None, ctypes.POINTER(Stream))),
    ("private_data", ctypes.c_void_p),
]

_pointer = ctypes.pythonapi.PyCapsule_GetPointer
_pointer.restype = ctypes.c_void_p
_pointer.argtypes = [ctypes.py_object, ctypes.c_char_p]


def stream_of(capsule):
    address = _pointer(capsule, b"arrow_array_stream")
    return ctypes.cast(address, ctypes.POINTER(Stream))


def text_at(array, place):
    offsets = ctypes.cast(array.buffers[1], ctypes.POINTER(ctypes.c_int32))
    return ctypes.string_at(
        array.buffers[2] + offsets[place], offsets[place + 1] - offsets[place]
    ).decode()


def next_batch(stream):
    """The columns of the next batch; None behind the last. Throws what the stream tells."""
    array = Array()
    if stream.contents.get_next(stream, ctypes.byref(array)):
        raise RuntimeError(stream.contents.get_last_error(stream).decode())
    if not array.release:
        return None
    columns = []
    for child in (array.children[i].contents for i in range(array.n_children)):
        if child.dictionary:
            codes = ctypes.cast(child.buffers[1], ctypes.POINTER(ctypes.c_int32))
            entries = child.dictionary.contents
            columns.append([text_at(entries, codes[i]) for i in range(child.length)])
        elif child.n_buffers == 3:
            columns.append([text_at(child, i) for i in range(child.length)])
        else:
            marks = ctypes.cast(child.buffers[0], ctypes.POINTER(ctypes.c_uint8))
            values = ctypes.cast(child.buffers[1], ctypes.POINTER(ctypes.c_double))
            columns.append(
                [
                    values[i] if not marks or marks[i // 8] >> i % 8 & 1 else None
                    for i in range(child.length)
                ]
            )
    array.release(ctypes.byref(array))
    return columns


class Held:
    """The batches of some data, unreleased; their last columns are doubles."""

    def __init__(self, data):
        stream = stream_of(capsule := data.__arrow_c_stream__())
        self.batches = []
        while True:
            array = Array()
            assert stream.contents.get_next(stream, ctypes.byref(array)) == 0
            if not array.release:
                break
            self.batches.append(array)
        del capsule

    def _last(self, array):
        return array.children[array.n_children - 1].contents

    def addresses(self):
        return [self._last(array).buffers[1] for array in self.batches]

    def values(self):
        read = []
        for array in self.batches:
            column = self._last(array)
            values = ctypes.cast(column.buffers[1], ctypes.POINTER(ctypes.c_double))
            read += values[: column.length]
        return read

    def release(self):
        for array in self.batches:
            array.release(ctypes.byref(array))
        self.batches = []


def table_of(data):
    capsule = data.__arrow_c_stream__()
    stream = stream_of(capsule)
    schema = Schema()
    assert stream.contents.get_schema(stream, ctypes.byref(schema)) == 0
    names = [schema.children[i].contents.name.decode() for i in range(schema.n_children)]
    schema.release(ctypes.byref(schema))
    columns = [[] for _ in names]
    while (batch := next_batch(stream)) is not None:
        for column, part in zip(columns, batch):
            column += part
    return dict(zip(names, columns))


def test_a_parameter_goes_out_by_columns(diet):
    table = table_of(diet["holds"])
    assert list(table) == ["food", "nutrient", "value"]
    rows = list(zip(table["food"], table["nutrient"]))
    assert dict(zip(rows, table["value"])) == dict(diet["holds"])


def test_texts_and_fields_go_out(diet):
    diet["food"]["Milk"] = "1 qt."
    assert table_of(diet["food"]) == {"food": ["Milk", "Tofu"], "text": ["1 qt.", ""]}
    diet.add_variable("x", ["food"], subtype=3)["Milk"] = (1, 2)
    table = table_of(diet["x"])
    assert list(table) == ["food", "level", "marginal", "lower", "upper", "scale"]
    assert [table[field] for field in ztb.FIELDS] == [[1], [2], [0], [math.inf], [1]]


def test_an_alias_gives_what_its_set_does(diet):
    diet["food"]["Milk"] = "1 qt."
    alias = diet.add_alias("f", "food")
    assert table_of(alias) == table_of(diet["food"]) == {"food": ["Milk", "Tofu"], "text": ["1 qt.", ""]}
    assert dict(ztb.from_arrow(alias.arrow(batch=1), "copy")) == {"Milk": "1 qt.", "Tofu": ""}
    diet["food"].from_arrow(alias)
    assert dict(diet["food"]) == {"Milk": "1 qt.", "Tofu": ""}


def test_a_wrong_choice_for_nulls_is_told_by_its_name(diet):
    expected = "is no choice.*, expected one of skip, na, error"
    with pytest.raises(ValueError, match="^null='x' " + expected):
        ztb.from_arrow(diet["holds"], "p", null="x")
    with pytest.raises(TypeError, match=r"^3 \(int\) is no choice for null"):
        diet["holds"].from_arrow(diet["holds"], null=3)


def test_special_values_are_those_of_the_package():
    with ztb.Database() as database:
        p = database.add_parameter("p", ["*"])
        for place, value in enumerate(ztb.SPECIAL_VALUES):
            p[place] = value
        assert ztb.special_codes(table_of(p)["value"]).tolist() == [0, 1, 2, 3, 4]
        nulls = table_of(p.arrow(na="null"))["value"]
        assert nulls[1] is None and ztb.special_code(nulls[0]) == ztb.CODE_UNDEFINED
        back = ztb.from_arrow(p, "p")
        assert ztb.special_codes(list(back.values())).tolist() == [0, 1, 2, 3, 4]
        assert ztb.special_code(ztb.from_arrow(p.arrow(na="null"), "p")["1"]) == 1
        with pytest.raises(ztb.Error, match="column value, row 1: a value is missing"):
            ztb.from_arrow(p.arrow(na="null"), "p", null="error")
        assert len(ztb.from_arrow(p.arrow(na="null"), "p", null="skip")) == 4


def test_a_stream_comes_in_batches_and_asks_for_no_schema(diet):
    capsule = diet["holds"].arrow(batch=2).__arrow_c_stream__(requested_schema=object())
    stream = stream_of(capsule)
    assert len(next_batch(stream)[0]) == 2


def test_a_stream_keeps_its_database_alive():
    database = ztb.Database()
    p = database.add_parameter("p", ["*"])
    p["i"] = 3
    capsule = p.__arrow_c_stream__()
    del p, database
    gc.collect()
    assert next_batch(stream_of(capsule)) == [["i"], [3.0]]


def test_a_change_or_an_end_of_the_database_is_an_error_of_the_stream(diet):
    changed = diet["holds"].arrow(batch=1).__arrow_c_stream__()
    next_batch(stream_of(changed))
    diet["holds"]["Milk", "iron"] = 1
    with pytest.raises(RuntimeError, match="records of the database were changed"):
        next_batch(stream_of(changed))
    ended = diet["holds"].__arrow_c_stream__()
    diet.close()
    with pytest.raises(RuntimeError, match="The database is closed"):
        next_batch(stream_of(ended))


def test_another_thread_reads(diet):
    capsule = diet["holds"].__arrow_c_stream__()
    read = []
    thread = threading.Thread(target=lambda: read.append(next_batch(stream_of(capsule))))
    thread.start()
    thread.join()
    assert len(read[0][0]) == len(diet["holds"])


@pytest.mark.parametrize("store", ["map", "vector", "trie"])
def test_a_symbol_is_made_and_filled(diet, store):
    with ztb.Database(store=store) as other:
        food = ztb.from_arrow(diet["food"], "food", database=other)
        holds = ztb.from_arrow(diet["holds"], "holds", database=other)
        assert isinstance(food, ztb.Set) and isinstance(holds, ztb.Parameter)
        assert holds.database is other
        assert dict(holds) == dict(diet["holds"])
        assert holds.domains[0].set == food and holds.domains[1].name == "nutrient"
        swapped = other.add_parameter("swapped", ["nutrient", "food"])
        swapped.from_arrow(diet["holds"])
        assert dict(swapped) == {(n, f): value for (f, n), value in diet["holds"].items()}
        swapped.from_arrow(diet["holds"], keys=["food", "nutrient"])
        assert dict(swapped) == dict(diet["holds"])


def test_refusals_change_nothing(diet):
    before = dict(diet["holds"])
    with pytest.raises(ztb.Error, match="symbol food: expected one column of texts at most"):
        with ztb.Database() as other:
            other.add_set("food").from_arrow(diet["holds"])
    with pytest.raises(TypeError, match="has no __arrow_c_stream__"):
        diet["holds"].from_arrow([1, 2])
    with pytest.raises(ValueError, match="no kind 'alias'"):
        ztb.from_arrow(diet["food"], "f", kind="alias")
    with pytest.raises(ValueError, match="no spelling of NA 'none'"):
        diet["holds"].arrow(na="none")
    with pytest.raises(ztb.Error, match="a batch has at most 1048576 records"):
        diet["holds"].arrow(batch=2**21).__arrow_c_stream__()
    with pytest.raises(ztb.Error, match="Symbol food exists already"):
        ztb.from_arrow(diet["food"].arrow(), "food", database=diet)
    assert dict(diet["holds"]) == before


def test_what_gives_no_stream_is_named(diet):
    class Gives:
        def __init__(self, given):
            self.given = given

        def __arrow_c_stream__(self, requested_schema=None):
            return self.given

        def __repr__(self):
            return "Gives"

    new = ctypes.pythonapi.PyCapsule_New
    new.restype = ctypes.py_object
    new.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_void_p]
    for given, shown in (
        (5, r"5 \(int\)"),
        ("<capsule>", r"'<capsule>' \(str\)"),
        (new(1, b"arrow_schema", None), '<capsule object "arrow_schema" at .* \\(PyCapsule\\)'),
    ):
        told = rf"^__arrow_c_stream__ of Gives \(Gives\) gave {shown}, expected a capsule with"
        with pytest.raises(TypeError, match=told):
            ztb.from_arrow(Gives(given), "p", database=diet)
        with pytest.raises(TypeError, match=told):
            diet["holds"].from_arrow(Gives(given))
    assert "p" not in diet and len(diet["holds"]) > 0


def test_a_symbol_is_made_and_filled_from_one_of_its_own_database(diet):
    holds = diet["holds"]
    before = dict(holds)
    copy = ztb.from_arrow(holds, "copy", database=diet)
    assert copy.database is diet and dict(copy) == before
    assert [domain.name for domain in copy.domains] == ["food", "nutrient"]
    holds["Milk", "iron"] = 77
    copy.from_arrow(holds.arrow(batch=1))
    assert dict(copy) == dict(holds)
    holds.from_arrow(holds)
    assert dict(copy) == dict(holds)
    with pytest.raises(ztb.Error, match="copy"):
        ztb.from_arrow(holds, "copy", database=diet)
    assert dict(copy) == dict(holds)


def numbered(store, count=5):
    database = ztb.Database(store=store)
    p = database.add_parameter("p", ["*"])
    for i in range(count):
        p[f"i{i}"] = i
    return database, p


def test_values_of_the_vector_store_are_not_copied():
    database, p = numbered("vector")
    p["i3"] = ztb.NA
    first, second = Held(p), Held(p.arrow(batch=2, na="null"))
    addresses = first.addresses()
    assert second.addresses() == [addresses[0] + place for place in (0, 16, 32)]
    # Reading copies nothing, and nobody who has let go is written for.
    assert sum(p.get(f"i{i}") for i in (0, 1, 2, 4)) == 7
    first.release()
    second.release()
    p["i0"] = 7
    third = Held(p)
    assert third.addresses() == addresses
    third.release()
    # Where values do not lie as a column of the spelling, they are copied.
    x = database.add_variable("x", ["*"])
    x["i"] = 1
    for other in (x, numbered("map")[1], numbered("trie")[1]):
        held = Held(other), Held(other)
        assert held[0].addresses() != held[1].addresses()
        for batches in held:
            batches.release()


def test_what_was_read_stays_as_it_was():
    database, p = numbered("vector")
    held = [Held(p)]
    p["i2"] = 77
    held.append(Held(p))
    p["more"] = 5
    held.append(Held(p))
    del p["i0"]
    held.append(Held(p))
    p.from_arrow(p)
    held.append(Held(p))
    p.clear()
    p["i1"] = -1
    held.append(Held(p))
    p.update({"i1": 4.5})
    held.append(Held(p))
    database.close()
    del p, database
    gc.collect()
    expected = [
        [0, 1, 2, 3, 4],
        [0, 1, 77, 3, 4],
        [0, 1, 77, 3, 4, 5],
        [1, 77, 3, 4, 5],
        [1, 77, 3, 4, 5],
        [-1],
        [4.5],
    ]
    assert [batches.values() for batches in held] == expected
    for place in (3, 0, 6, 5, 1, 4, 2):
        assert held[place].values() == expected[place]
        thread = threading.Thread(target=held[place].release)
        thread.start()
        thread.join()


def test_threads_read_and_release_while_the_database_changes():
    database, p = numbered("vector", 200)
    wrong = []

    def check(held, number):
        if held.values() != [number] * 200:
            wrong.append(number)
        held.release()

    threads = []
    for number in range(20):
        for i in range(200):
            p[f"i{i}"] = number
        threads.append(threading.Thread(target=check, args=(Held(p), number)))
        threads[-1].start()
    database.close()
    for thread in threads:
        thread.join()
    assert wrong == []
