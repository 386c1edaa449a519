"""The blocks of the manual print what stands below them."""

import doctest
import pathlib
import re

import pytest

ROOT = pathlib.Path(__file__).parents[2]


@pytest.mark.parametrize("document", ["docs/python.md", "docs/python_logs.md", "README.md"])
def test_blocks(document, tmp_path, monkeypatch):
    text = (ROOT / document).read_text()
    blocks = "\n".join(re.findall(r"^```pycon\n(.*?)^```", text, re.DOTALL | re.MULTILINE))
    (tmp_path / "examples").symlink_to(ROOT / "examples")
    monkeypatch.chdir(tmp_path)
    test = doctest.DocTestParser().get_doctest(blocks, {}, document, document, 0)
    assert test.examples
    result = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS).run(test)
    assert result.failed == 0
