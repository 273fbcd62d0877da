"""Views: the server of ``ztb view`` from Python."""

import json
import os
import sys
import types
import urllib.error
import urllib.request

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


def test_the_browser_is_opened(diet, monkeypatch):
    opened = []
    monkeypatch.setattr("webbrowser.open", opened.append)
    with diet.view() as view:
        assert opened == [view.link]


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
