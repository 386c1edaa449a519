import pathlib
import shutil

import pytest

EXAMPLES = pathlib.Path(__file__).parents[2] / "examples"


@pytest.fixture
def car(tmp_path):
    """A copy of the example, to be changed."""
    return pathlib.Path(shutil.copy(EXAMPLES / "powertrain.dbc", tmp_path / "car.dbc"))
