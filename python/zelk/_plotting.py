"""Signals over time, drawn with Matplotlib."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any

from ._errors import ArgumentError

if TYPE_CHECKING:
    from ._table import Table


def plot(table: Table, signals: tuple[str, ...], ax: Any, keywords: dict[str, Any]) -> Any:
    names = list(signals) or [name for name in table.columns if name != "time" and table[name].dtype.kind != "O"]
    columns = {name: table[name] for name in names}
    texts = [name for name, values in columns.items() if values.dtype.kind == "O"]
    if not names or texts:
        raise ArgumentError(f"{texts[0]} has texts, and numbers are drawn" if texts else f"{table.name} has nothing to draw")
    axes = _axes(table, names) if ax is None else dict.fromkeys(names, ax)
    times = table._times(table._index("time"), "datetime")
    for name, values in columns.items():
        axes[name].plot(times, values, **{"label": name, **keywords})
    drawn = list(dict.fromkeys(axes.values()))
    for each in drawn:
        each.legend(loc="upper right")
    drawn[-1].set_xlabel("time")
    return drawn[0] if len(drawn) == 1 else drawn


def _axes(table: Table, names: list[str]) -> dict[str, Any]:
    """One axis for each unit, below each other."""
    from matplotlib import pyplot

    units = {name: table.units.get(name, "") for name in names}
    different = list(dict.fromkeys(units.values()))
    figure, grid = pyplot.subplots(len(different), 1, sharex=True, squeeze=False, layout="constrained")
    figure.suptitle(table.name)
    by_unit = dict(zip(different, grid[:, 0]))
    for unit, axis in by_unit.items():
        axis.set_ylabel(unit)
    return {name: by_unit[unit] for name, unit in units.items()}
