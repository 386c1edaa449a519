_zelk.__prefix__:
    import collections.abc
    import os
    from typing_extensions import Buffer
    from ._attributes import Attributes
    from ._choice import Choice
    from ._findings import Difference, Finding
