"""Views: the server of ``ztb view`` from Python."""

import json
import os
import pathlib
import sys
import types
import urllib.error
import urllib.parse
import urllib.request

import pandas as pd
import pytest

import ztb


def asked(view, path):
    """What a page of the view gets."""
    address, token = view.link.split("/#token=")
    body = json.dumps({"token": token}).encode()
    request = urllib.request.Request(address + "/api/session", body)
    with urllib.request.urlopen(request, timeout=10) as answer:
        key = json.load(answer)["key"]
    request = urllib.request.Request(
        f"{address}/api/{path}", headers={"Authorization": f"Bearer {key}"}
    )
    with urllib.request.urlopen(request, timeout=10) as answer:
        return json.load(answer), dict(answer.headers)


def test_a_database_is_shown_as_it_is_now(diet):
    with diet.view(open_browser=False) as view:
        assert view.link.startswith("http://127.0.0.1:")
        rows, headers = asked(view, "rows?s=holds&p0=milk")
        assert rows["rows"] == [["Milk", "iron", 1], ["Milk", "kcal", 3]]
        assert "frame-ancestors 'none'" in headers["Content-Security-Policy"]
        file = view.kept.path
        assert os.path.exists(file)
        assert not view.closed
    assert view.closed
    with pytest.raises(urllib.error.URLError):
        asked(view, "files")
    view.close()
    view.kept = None
    assert not os.path.exists(file)


def test_the_browser_is_opened_by_a_file_that_nobody_else_can_read(diet, monkeypatch):
    """The arguments of the browser, which every user of the machine can see, hold no token."""
    opened = []
    monkeypatch.setattr("webbrowser.open", opened.append)
    with diet.view() as view:
        [address] = opened
        assert address.startswith("file:///")
        assert view.link.split("token=")[1] not in address
        page = pathlib.Path(urllib.request.url2pathname(urllib.parse.urlsplit(address).path))
        assert f"url={view.link}" in page.read_text()
        assert page.parent.stat().st_mode & 0o077 == 0
    view.door = None
    assert not page.exists()


def test_a_notebook_shows_a_frame(diet, monkeypatch):
    shell = type("ZMQInteractiveShell", (), {})()
    notebook = types.SimpleNamespace(get_ipython=lambda: shell)
    monkeypatch.setitem(sys.modules, "IPython", notebook)
    monkeypatch.setattr("webbrowser.open", lambda link: pytest.fail("it was opened"))
    with diet.view() as view:
        frame = view._repr_html_()
        assert frame.startswith(f'<iframe src="{view.link}"')
        _, headers = asked(view, "files")
        assert "frame-ancestors http://localhost:*" in headers["Content-Security-Policy"]


def test_what_cannot_be_shown_is_told(tmp_path):
    from ztb import viewer

    with pytest.raises(ztb.Error, match="nothing.rxf"):
        viewer.show([tmp_path / "nothing.rxf"], False)


def test_the_result_of_a_sweep_is_shown_with_its_inputs(tmp_path):
    model = tmp_path / "m.lp"
    model.write_text(
        "Minimize\n cost: x\nSubject To\n meet: x - need_var >= 0\n"
        "Bounds\n x <= 20\n need_var = 1\nEnd\n"
    )
    needs = pd.Series([4.0, 16.0, 8.0, 30.0], index=pd.Index(["a", "b", "c", "d"], name="case"))
    result = ztb.sweep(model, {"need": needs}, over="case", report=["x"])
    with result.view(open_browser=False) as view:
        sweep, _ = asked(view, "sweep")
        assert sweep["scenarios"] == 4
        assert [one["label"] for one in sweep["failed"]] == ["d"]
        inputs, _ = asked(view, "inputs")
        assert inputs["low"] == {"label": "a", "objective": 4}
        assert inputs["high"] == {"label": "b", "objective": 16}
        assert inputs["inputs"] == [
            {"symbol": "need", "key": [], "low": 4, "high": 16, "share": 0.75}
        ]


def test_a_result_whose_scenarios_are_gone_is_shown_without_them(tmp_path):
    model = tmp_path / "m.lp"
    model.write_text(
        "Minimize\n cost: x\nSubject To\n meet: x - need_var >= 0\nBounds\n need_var = 1\nEnd\n"
    )
    needs = ztb.Database()
    case = needs.add_set("case", ["*"])
    need = needs.add_parameter("need", [case])
    for number in (1, 2):
        case.add(f"c{number}")
        need[f"c{number}"] = float(number)
    scenarios = tmp_path / "needs.rxf"
    needs.write(scenarios)
    result = ztb.sweep(model, scenarios, over="case", out=tmp_path / "out.rxf")
    scenarios.unlink()
    with result.view(open_browser=False) as view:
        inputs, _ = asked(view, "inputs")
        assert inputs["known"] is False
