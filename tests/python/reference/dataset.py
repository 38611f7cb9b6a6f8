"""The table holder."""

from __future__ import annotations

from .namespace import ns


class DatasetS:
    # A constructor that took `csvfname` stood before this one and is no longer reachable.
    def __init__(self, dataframe):
        self.df = dataframe

    def AddNewColumns(self, fun):
        colnames = list(self.df.columns)
        for i in range(len(colnames)):
            new_values = fun(self.df[colnames[i]])
            self.df = self.df.withColumn("log" + colnames[i], new_values)

    @staticmethod
    def GetTargetType(y):
        if ns.FC.is_not_categorical(y):
            return "regression"
        return "classification"


ns.DatasetS = DatasetS
