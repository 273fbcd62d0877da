"""Symbols as xarray objects, whole databases as data sets and NetCDF files.

xarray, and for files netCDF4, are imported only when something is asked for.
"""

from __future__ import annotations

import errno
import importlib
import os
import tempfile
import warnings
from typing import Any, Dict, List, Sequence, Set, Tuple

import numpy as np
import numpy.typing as npt

from . import arguments
from .arrays import first_cell
from .errors import DamagedFileError, Error, MissingFileError
from .missing import missing_value, require_choice
from .rounding import warn_of_cells
from .special import _double
from .texts import level_of_caller
from .values import FIELDS

# Symbols and databases are the package's own, which import this module.
Symbol = Any
Database = Any

_KINDS = ("set", "parameter", "variable", "equation", "alias")

#: A cell without a record: a NaN with bits of its own, so that ``NA`` stays apart.
ABSENT: float = _double(0x7FF8000061627374)
_ABSENT_BITS = np.float64(ABSENT).view(np.uint64)

#: The most cells of an array, unless more are asked for: a gigabyte of numbers.
MOST_CELLS = 2**27

#: The most bytes of a symbol's text.
_MOST_TEXT = 255

#: The dimension of fields in a data set, whose other dimensions may have the name of any symbol.
_FIELD = "field:"


def _package(name: str, debian: str) -> Any:
    try:
        return importlib.import_module(name)
    except ImportError:
        raise ImportError(
            f"{name} is needed for this: install the Debian package {debian}, or {name} by pip"
        ) from None


def _is(symbol: Symbol, kind: str) -> bool:
    return bool(_KINDS[symbol._native.type] == kind)


def _xarray() -> Any:
    return _package("xarray", "python3-xarray")


def _field_dimension(names: Sequence[str]) -> str:
    """The dimension of fields beside others of these names."""
    return _FIELD if "field" in names else "field"


# ---- out ----


def _require_room(symbol: Symbol, sizes: Sequence[int], most: int) -> None:
    cells = 1
    for size in sizes:
        cells *= size
    if cells > most:
        raise ValueError(
            f"symbol {symbol.name} has {len(symbol)} records and would fill {cells} cells "
            f"({' x '.join(map(str, sizes))}, {8 * cells} bytes), more than {most}; most={cells} "
            "takes them all the same"
        )


def _axis_numbers(
    symbol: Symbol, keys: npt.NDArray[np.int32]
) -> List[Tuple[npt.NDArray[np.int32], bool]]:
    """The label numbers along each axis: those of the domain set, or else, which is told, those that
    records have."""
    axes = []
    for position, domain in enumerate(symbol.domains):
        used = np.unique(keys[:, position])
        whole = None if domain.set is None else domain.set._native.rows()[0][:, 0]
        inside = whole is not None and bool(np.isin(used, whole).all())
        axes.append((whole if inside and whole is not None else used, inside))
    return axes


def _cells(
    symbol: Symbol,
    keys: npt.NDArray[np.int32],
    content: npt.NDArray[Any],
    axes: Sequence[npt.NDArray[np.int32]],
    empty: Any,
    most: int,
) -> npt.NDArray[Any]:
    """What records hold, on axes, with ``empty`` elsewhere."""
    sizes = [len(axis) for axis in axes] + list(content.shape[1:])
    _require_room(symbol, sizes, most)
    if content.dtype == np.float64 and (content.view(np.uint64) == _ABSENT_BITS).any():
        raise ValueError(
            f"symbol {symbol.name} has the NaN 0x{_ABSENT_BITS:016x} as a value, which in an array "
            "is a cell without a record"
        )
    cells = np.full(sizes, empty, dtype=content.dtype)
    places = []
    for column, axis in zip(keys.T, axes):
        place = np.zeros(max(int(axis.max(initial=0)), int(column.max(initial=0))) + 1, np.int64)
        place[axis] = np.arange(len(axis))
        places.append(place[column])
    if len(content):
        cells[tuple(places)] = content if places else content[0]
    return cells


def array_of(symbol: Symbol, most: int) -> Any:
    """A symbol as a DataArray."""
    keys, content = symbol._table()
    numbers = [axis for axis, _ in _axis_numbers(symbol, keys)]
    labels = symbol._database._label_array()
    names = symbol._native.columns()
    coordinates: Dict[str, Any] = {
        name: labels[axis].astype(object) for name, axis in zip(names, numbers)
    }
    dimensions = list(names)
    if _is(symbol, "set"):
        cells = _cells(symbol, keys, np.ones(len(keys), dtype=np.bool_), numbers, False, most)
    elif len(symbol._content_columns()) == 1:
        cells = _cells(symbol, keys, content[:, 0], numbers, ABSENT, most)
    else:
        cells = _cells(symbol, keys, content, numbers, ABSENT, most)
        dimensions.append(_field_dimension(names))
        coordinates[dimensions[-1]] = np.array(FIELDS, dtype=object)
    return _xarray().DataArray(
        cells, dims=dimensions, coords=coordinates, name=symbol.name, attrs={"text": symbol.text}
    )


# ---- in ----


def fill(symbol: Symbol, data: Any, nan: str) -> None:
    """Replaces the records of a symbol by the cells of a DataArray."""
    require_choice(nan)
    xarray = _xarray()
    if not isinstance(data, xarray.DataArray):
        raise TypeError(f"{arguments.shown(data)} is no DataArray of xarray")
    names = symbol._native.columns()
    wide = not _is(symbol, "set") and len(symbol._content_columns()) > 1
    field = _field_dimension(names)
    expected = [*names, field] if wide else names
    if set(data.dims) == set(expected):
        data = data.transpose(*expected)
    elif len(data.dims) != len(expected) or wide:
        raise ValueError(
            f"the array has the dimensions {', '.join(map(str, data.dims))}; symbol {symbol.name} "
            f"has {', '.join(expected)}"
        )
    if wide and list(data[field].values) != list(FIELDS):
        raise ValueError(f"the coordinates of {field} are not {', '.join(FIELDS)}")
    axes = [data[name].values for name in data.dims[: symbol.dimension]]
    cells = np.asarray(data.values)
    if _is(symbol, "set"):
        _put(symbol, axes, np.asarray(cells, dtype=np.bool_), None)
        return
    values = np.array(cells, dtype=np.float64)
    warn_of_cells(cells, symbol.name, first_cell)
    rows = values if wide else values[..., np.newaxis]
    there = ~(rows.view(np.uint64) == _ABSENT_BITS).all(axis=-1)
    if nan != "na":
        missing = np.isnan(rows).any(axis=-1) & there
        if nan == "error" and missing.any():
            raise missing_value(f"cell {tuple(np.argwhere(missing)[0].tolist())}", symbol.name)
        there &= ~missing
    _put(symbol, axes, there, rows)


def _put(symbol: Symbol, axes: Sequence[Any], there: Any, rows: Any) -> None:
    new_labels = symbol._database._native.new_labels()
    places = np.nonzero(np.atleast_1d(there))[: len(axes)] if axes else ()
    count = int(np.count_nonzero(there))
    keys = np.empty((count, len(axes)), dtype=np.int32)
    for position, (axis, place) in enumerate(zip(axes, places)):
        used = np.unique(place)
        numbers = np.zeros(len(axis), dtype=np.int32)
        numbers[used] = new_labels.numbers(_label(axis[at]) for at in used)
        keys[:, position] = numbers[place]
    if rows is None:
        symbol._native.put_elements(keys, None, new_labels)
    else:
        values = rows[there].reshape(count, rows.shape[-1])
        symbol._native.put_rows(keys, values, list(range(rows.shape[-1])), new_labels)


def _label(label: Any) -> Any:
    """A coordinate as what the database takes for a label; of a number the digits that tell it."""
    if isinstance(label, np.timedelta64):
        raise TypeError(f"{label!r} is no label, expected a str, a number, or a date")
    if isinstance(label, (float, np.floating)) and np.isfinite(label):
        return np.format_float_positional(label, trim="-")
    return label.item() if isinstance(label, (np.str_, np.integer)) else label


# ---- whole databases ----


def dataset_of(database: Database, most: int) -> Any:
    """A database as a Dataset.

    Dimensions are the sets that are domains; positions without one have axes of their own. For each
    symbol there is a variable of cells, whose attributes tell the rest.
    """
    variables: Dict[str, Any] = {}
    coordinates: Dict[str, Any] = {}
    labels = database._label_array()
    for symbol in database.symbols():
        if not _is(symbol, "alias"):
            _add_variable(variables, coordinates, symbol, labels, most)
    attributes = {
        "ztb_labels": _joined(database.labels),
        "ztb_symbols": _joined(_described(symbol) for symbol in database.symbols()),
    }
    return _xarray().Dataset(variables, coordinates, attributes)


def _add_variable(
    variables: Dict[str, Any],
    coordinates: Dict[str, Any],
    symbol: Symbol,
    labels: npt.NDArray[np.object_],
    most: int,
) -> None:
    keys, content = symbol._table()
    dimensions: List[str] = []
    numbers = []
    for position, (axis, inside) in enumerate(_axis_numbers(symbol, keys)):
        own = f"{symbol.name}:{position + 1}"
        domain = symbol.domains[position].set
        name = domain.name if inside and domain is not None else own
        dimensions.append(own if name in dimensions else name)
        numbers.append(axis)
        coordinates[dimensions[-1]] = labels[axis].astype(object)
    if _is(symbol, "set"):
        marks = np.ones(len(keys), dtype=np.int8)
        variables[f"{symbol.name}:elements"] = (
            dimensions,
            _cells(symbol, keys, marks, numbers, np.int8(0), most),
        )
        if any(content):
            variables[f"{symbol.name}:texts"] = (
                dimensions,
                _cells(symbol, keys, content, numbers, "", most),
            )
        return
    wide = content.shape[1] > 1
    if wide:
        dimensions.append(_FIELD)
        coordinates[_FIELD] = np.array(FIELDS, dtype=object)
    cells = _cells(symbol, keys, content if wide else content[:, 0], numbers, ABSENT, most)
    variables[symbol.name] = (dimensions, cells)


def _described(symbol: Any) -> str:
    """A symbol as a line: kind, name, domains, user information, and text or the set of an alias."""
    if _is(symbol, "alias"):
        target = symbol.set
        return "\t".join(["alias", symbol.name, "", "0", "*" if target is None else target.name])
    kind = _KINDS[symbol._native.type]
    domains = "\v".join(domain.name for domain in symbol.domains)
    return "\t".join([kind, symbol.name, domains, str(symbol.user_info), symbol.text])


def _joined(texts: Any) -> str:
    return "\n".join(text.replace("\\", "\\\\").replace("\n", "\\n") for text in texts)


def _split(joined: str) -> List[str]:
    def plain(text: str) -> str:
        return text.replace("\\\\", "\0").replace("\\n", "\n").replace("\0", "\\")

    return [plain(text) for text in joined.split("\n")] if joined else []


def fill_database(database: Database, data: Any, nan: str) -> None:
    """Makes an empty database the one that a Dataset was made from, or one of any other data set.

    Variables that no symbol was written to are parameters, or sets, of their own.
    """
    require_choice(nan)
    dataset = _dataset(data)
    others = set(dataset.variables) - set(dataset.indexes)
    if _is_ours(dataset):
        others -= _fill_from_ours(database, dataset)
    else:
        _add_axes(database, dataset)
    _require_numbers(dataset, others)
    for name in dataset.variables:
        if name in others:
            _add_variable_of_others(database, dataset[name], nan)


def _dataset(data: Any) -> Any:
    xarray = _xarray()
    if isinstance(data, xarray.Dataset):
        return data
    if not isinstance(data, xarray.DataArray):
        raise TypeError(f"{arguments.shown(data)} is no Dataset or DataArray of xarray")
    if data.name is None:
        raise ValueError("the array has no name for its symbol; array.rename('x') gives it one")
    return data.to_dataset()


def _is_ours(dataset: Any) -> bool:
    return {"ztb_labels", "ztb_symbols"} <= set(dataset.attrs)


def _fill_from_ours(database: Database, dataset: Any) -> Set[Any]:
    """Reads the symbols that a Dataset was made from; the names of their variables."""
    database.add_labels(_split(dataset.attrs["ztb_labels"]))
    for line in _split(dataset.attrs["ztb_symbols"]):
        _add_symbol(database, line.split("\t", 4))
    names = set()
    for symbol in database.symbols():
        if not _is(symbol, "alias"):
            _read_variable(symbol, dataset)
            of_set = [f"{symbol.name}:elements", f"{symbol.name}:texts"]
            names.update(of_set if _is(symbol, "set") else [symbol.name])
    return names


def _add_axes(database: Database, dataset: Any) -> None:
    """A set for each dimension, of its labels, or of 0, 1 and so on where it has none."""
    for dimension in dataset.dims:
        if getattr(dataset.indexes.get(dimension), "nlevels", 1) > 1:
            raise ValueError(
                f"dimension {dimension} has labels of several levels; "
                f"dataset.unstack({dimension!r}) makes a dimension of each"
            )
        axis = dataset[dimension].values
        symbol = database.add_set(dimension, ["*"], _text_of(dataset[dimension]))
        try:
            _put(symbol, [axis], np.ones(len(axis), dtype=np.bool_), None)
        except (TypeError, ValueError) as error:
            raise type(error)(f"dimension {dimension}: {error}") from None


def _require_numbers(dataset: Any, names: Set[Any]) -> None:
    """Refuses variables of texts, dates and the like, all at once."""
    found = [name for name in dataset.variables if name in names]
    kept = [name for name in found if dataset[name].dtype.kind not in "biuf"]
    if kept:
        told = ", ".join(f"{name} ({dataset[name].dtype})" for name in kept)
        raise TypeError(
            f"numbers or truth values are expected, not {told}; "
            f"dataset.drop_vars({kept!r}) leaves them out"
        )


def _add_variable_of_others(database: Database, array: Any, nan: str) -> None:
    domains = [name if name in database else "*" for name in array.dims]
    is_set = array.dtype.kind == "b" and array.ndim > 0
    add = database.add_set if is_set else database.add_parameter
    fill(add(array.name, domains, _text_of(array)), array, nan)


def _text_of(array: Any) -> str:
    """What an array says of itself, as to_xarray or the conventions of NetCDF files tell it."""
    text = array.attrs.get("text", array.attrs.get("long_name", ""))
    whole = text if isinstance(text, str) else ""
    kept = whole.encode()[:_MOST_TEXT].decode(errors="ignore")
    if kept != whole:
        warnings.warn(f"the text of {array.name} is cut after {_MOST_TEXT} bytes", stacklevel=level_of_caller())
    return kept


def _add_symbol(database: Database, parts: List[str]) -> None:
    if len(parts) != 5 or parts[0] not in _KINDS:
        raise DamagedFileError(f"{parts!r} describes no symbol", "from_xarray")
    kind, name, domains, user_info, text = parts
    if kind == "alias":
        database._wrap(
            database._native.add_alias(name, database._native.find_symbol(text, False), "")
        )
        return
    names = domains.split("\v") if domains else []
    database._add(name, _KINDS.index(kind), names, text, int(user_info))


def _read_variable(symbol: Symbol, dataset: Any) -> None:
    name = f"{symbol.name}:elements" if _is(symbol, "set") else symbol.name
    if name not in dataset:
        raise DamagedFileError(f"the data set has no variable {name}", "from_xarray")
    array = dataset[name]
    axes = [dataset[dimension].values for dimension in array.dims[: symbol.dimension]]
    cells = np.asarray(array.values)
    if _is(symbol, "set"):
        _put(symbol, axes, cells != 0, None)
        texts = dataset.get(f"{symbol.name}:texts")
        if texts is not None:
            there = np.argwhere(texts.values != "").tolist()
            symbol.texts.update(
                (tuple(_label(axis[at]) for axis, at in zip(axes, place)), str(texts.values[tuple(place)]))
                for place in there
            )
        return
    rows = np.array(cells, dtype=np.float64)
    if symbol._native.type == _KINDS.index("parameter"):
        rows = rows[..., np.newaxis]
    _put(symbol, axes, ~(rows.view(np.uint64) == _ABSENT_BITS).all(axis=-1), rows)


# ---- files ----


def write_netcdf(database: Database, path: Any, most: int) -> None:
    """Writes a database as a NetCDF file."""
    _package("netCDF4", "python3-netcdf4")
    dataset = dataset_of(database, most)
    # A number that stands for missing ones would replace all NaNs.
    kinds = {name: variable.dtype.kind for name, variable in dataset.variables.items()}
    encoding = {name: {"_FillValue": None} for name, kind in kinds.items() if kind in "fi"}
    # The file takes its name when it is whole.
    folder, name = os.path.split(os.path.abspath(path))
    if not os.path.isdir(folder):
        raise MissingFileError(
            f"{os.fsdecode(path)}: cannot be written: the folder does not exist", "write_netcdf"
        )
    if os.path.lexists(path) and (os.path.islink(path) or not os.path.isfile(path)):
        raise Error(
            f"{os.fsdecode(path)}: is no regular file, nothing is written to it", "write_netcdf"
        )
    with tempfile.TemporaryDirectory(prefix=".ztb.", dir=folder) as scratch:
        written = os.path.join(scratch, name)
        dataset.to_netcdf(written, engine="netcdf4", encoding=encoding)
        os.replace(written, path)


def read_netcdf(path: Any) -> Any:
    """The Dataset of a NetCDF file, of others' with dates, scales and missing values as they mean."""
    _package("netCDF4", "python3-netcdf4")
    xarray = _xarray()
    try:
        dataset = xarray.load_dataset(path, engine="netcdf4", mask_and_scale=False)
        return dataset if _is_ours(dataset) else xarray.load_dataset(path, engine="netcdf4")
    except FileNotFoundError:
        raise MissingFileError(
            f"{os.fsdecode(path)}: cannot be read: {os.strerror(errno.ENOENT)}", "read_netcdf"
        ) from None
    except (OSError, ValueError, RuntimeError) as error:
        raise DamagedFileError(f"{os.fsdecode(path)}: {error}", "read_netcdf") from None
